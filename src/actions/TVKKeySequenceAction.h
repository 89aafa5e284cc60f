#pragma once

#include "actions/TVKAction.h"
#include "actions/TVKKeystrokeElement.h"

#include <QStringList>

// Types a list of keystrokes into the target application. The list operations take the list to
// work on, so the same code serves a button's one list and each direction's list.
class TVKKeySequenceAction : public TVKAction
{
public:
    TVKKeySequenceAction() = default;
    // The pacing arrives as the editor's whole slider value and is kept as a float.
    TVKKeySequenceAction(TVKControl* control, unsigned delay, bool repeat);
    TVKKeySequenceAction(const corvane::PlistValue& archive, TVKControl* control);

    float delay() const { return m_delay; }
    void setDelay(float delay) { m_delay = delay; }
    bool repeat() const { return m_repeat; }
    void setRepeat(bool repeat) { m_repeat = repeat; }

    static qsizetype countForSequence(const TVKKeystrokeList& sequence);
    // A missing element is ignored.
    static void addKeystrokeElement(const TVKKeystrokeElement* element, TVKKeystrokeList& sequence);
    static void addKeystroke(const QString& character, quint32 keyCode, quint64 modifiers,
                             TVKKeystrokeList& sequence);
    // An index past the end gives the last keystroke; an empty list gives none.
    static TVKKeystrokeElement* keystrokeAtIndex(qsizetype index, TVKKeystrokeList& sequence);
    static const TVKKeystrokeElement* keystrokeAtIndex(qsizetype index,
                                                       const TVKKeystrokeList& sequence);
    // Overwrites the keystroke keystrokeAtIndex() finds (the last one for an index past the end).
    static void setKeystroke(const QString& character, quint32 keyCode, quint64 modifiers,
                             qsizetype index, TVKKeystrokeList& sequence);
    // An index past the end removes the last keystroke.
    static void removeKeystrokeAtIndex(qsizetype index, TVKKeystrokeList& sequence);

    static corvane::PlistValue archiveKeySequence(const TVKKeystrokeList& sequence);
    static TVKKeystrokeList unarchiveKeySequence(const corvane::PlistValue& archive);

    corvane::FourCharCode editorTabID() const override;
    void writeTo(corvane::PlistValue& dict) const override;

protected:
    TVKKeySequenceAction(const TVKKeySequenceAction&) = default;

private:
    float m_delay = 0.0f;
    bool m_repeat = false;
};

class TVKButtonKeySequenceAction : public TVKKeySequenceAction
{
public:
    static constexpr qint32 kActionType = 258;

    TVKButtonKeySequenceAction() = default;
    explicit TVKButtonKeySequenceAction(TVKControl* control)
        : TVKButtonKeySequenceAction(control, 0, false)
    {}
    TVKButtonKeySequenceAction(TVKControl* control, unsigned delay, bool repeat);
    TVKButtonKeySequenceAction(const corvane::PlistValue& archive, TVKControl* control);

    std::unique_ptr<TVKAction> copyWithZone() const override;
    QString actionDescriptor() const override;
    qint32 actionType() const override { return kActionType; }
    void writeTo(corvane::PlistValue& dict) const override;

    TVKKeystrokeList& sequence() { return m_sequence; }
    const TVKKeystrokeList& sequence() const { return m_sequence; }

protected:
    TVKButtonKeySequenceAction(const TVKButtonKeySequenceAction&) = default;

private:
    TVKKeystrokeList m_sequence;
};

// One keystroke list per direction of the control, index = direction number.
class TVKMultipleKeySequenceAction : public TVKKeySequenceAction
{
public:
    using TVKKeySequenceAction::TVKKeySequenceAction;

    virtual int numberOfDirections() const;
    // "none" for a direction the control does not have.
    virtual QString descriptorForAxis(int axis) const;

    QString actionDescriptor() const override;
    void writeTo(corvane::PlistValue& dict) const override;

    const std::vector<TVKKeystrokeList>& sequences() const { return m_sequences; }
    // None for a direction the control does not have, or one an old archive did not hold.
    TVKKeystrokeList* sequenceForDirection(int direction);
    const TVKKeystrokeList* sequenceForDirection(int direction) const;
    // Stores a copy of the list; the slot after the last one may be filled, others are ignored.
    void setSequence(const TVKKeystrokeList& sequence, int direction);

protected:
    TVKMultipleKeySequenceAction(const TVKMultipleKeySequenceAction&) = default;
    // Called from each concrete constructor, once numberOfDirections() answers for the class.
    void createEmptySequences();
    void restoreSequences(const corvane::PlistValue& archive);
    // The order in which the descriptor visits the directions, and whether an empty one says so.
    virtual std::vector<int> descriptorOrder() const;
    virtual bool describesEmptyDirection() const { return false; }
    QString axisName(const QStringList& names, int axis) const;

private:
    std::vector<TVKKeystrokeList> m_sequences;
};

class TVK4WayKeySequenceAction : public TVKMultipleKeySequenceAction
{
public:
    static constexpr qint32 kActionType = 770;

    TVK4WayKeySequenceAction() { createEmptySequences(); }
    explicit TVK4WayKeySequenceAction(TVKControl* control)
        : TVK4WayKeySequenceAction(control, 0, false)
    {}
    TVK4WayKeySequenceAction(TVKControl* control, unsigned delay, bool repeat);
    TVK4WayKeySequenceAction(const corvane::PlistValue& archive, TVKControl* control);

    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }
    int numberOfDirections() const override { return 4; }
    QString descriptorForAxis(int axis) const override;

private:
    TVK4WayKeySequenceAction(const TVK4WayKeySequenceAction&) = default;
    mutable QStringList fourWayAxisDescriptors;
};

class TVKEncoderKeySequenceAction : public TVKMultipleKeySequenceAction
{
public:
    static constexpr qint32 kActionType = 514;

    TVKEncoderKeySequenceAction() { createEmptySequences(); }
    explicit TVKEncoderKeySequenceAction(TVKControl* control)
        : TVKEncoderKeySequenceAction(control, 0, false)
    {}
    TVKEncoderKeySequenceAction(TVKControl* control, unsigned delay, bool repeat);
    TVKEncoderKeySequenceAction(const corvane::PlistValue& archive, TVKControl* control);

    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }
    int numberOfDirections() const override { return 2; }
    QString descriptorForAxis(int axis) const override;

private:
    TVKEncoderKeySequenceAction(const TVKEncoderKeySequenceAction&) = default;
    mutable QStringList encoderAxisDescriptors;
};

class TVKJogKeySequenceAction : public TVKMultipleKeySequenceAction
{
public:
    static constexpr qint32 kActionType = 1282;

    TVKJogKeySequenceAction() { createEmptySequences(); }
    explicit TVKJogKeySequenceAction(TVKControl* control)
        : TVKJogKeySequenceAction(control, 0, false)
    {}
    TVKJogKeySequenceAction(TVKControl* control, unsigned delay, bool repeat);
    TVKJogKeySequenceAction(const corvane::PlistValue& archive, TVKControl* control);

    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }
    int numberOfDirections() const override { return 2; }
    QString descriptorForAxis(int axis) const override;

private:
    TVKJogKeySequenceAction(const TVKJogKeySequenceAction&) = default;
    mutable QStringList jogAxisDescriptors;
};

// The shuttle lists its directions as Counter Clockwise, Stopped, Clockwise and names an empty
// one "none", unlike the other per-direction actions.
class TVKShuttleKeySequenceAction : public TVKMultipleKeySequenceAction
{
public:
    static constexpr qint32 kActionType = 1026;

    TVKShuttleKeySequenceAction() { createEmptySequences(); }
    explicit TVKShuttleKeySequenceAction(TVKControl* control)
        : TVKShuttleKeySequenceAction(control, 0, false)
    {}
    TVKShuttleKeySequenceAction(TVKControl* control, unsigned delay, bool repeat);
    TVKShuttleKeySequenceAction(const corvane::PlistValue& archive, TVKControl* control);

    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }
    int numberOfDirections() const override { return 3; }
    QString descriptorForAxis(int axis) const override;

protected:
    std::vector<int> descriptorOrder() const override { return {0, 2, 1}; }
    bool describesEmptyDirection() const override { return true; }

private:
    TVKShuttleKeySequenceAction(const TVKShuttleKeySequenceAction&) = default;
    mutable QStringList shuttleAxisDescriptors;
};
