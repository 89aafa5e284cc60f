#pragma once

#include "actions/TVKKeySequenceAction.h"

// A ready-made command of the target application, chosen from the built-in command catalogue:
// a keystroke with modifiers (mode 0, held in the one-element sequence) or a numbered procedure
// the background service runs. Group and command are remembered by row and by name.
class TVKBuiltInAction : public TVKKeySequenceAction
{
public:
    TVKBuiltInAction() = default;
    explicit TVKBuiltInAction(TVKControl* control);
    TVKBuiltInAction(TVKControl* control, unsigned delay, bool repeat, int commandGroup,
                     int command, const QString& commandGroupName, const QString& commandName,
                     int mode, int procedure, quint32 keyCode, quint64 modifiers);
    TVKBuiltInAction(const corvane::PlistValue& archive, TVKControl* control);

    TVKKeystrokeList& sequence() { return m_sequence; }
    const TVKKeystrokeList& sequence() const { return m_sequence; }
    int commandGroupIndex() const { return m_commandGroupIndex; }
    void setCommandGroupIndex(int index) { m_commandGroupIndex = index; }
    int commandIndex() const { return m_commandIndex; }
    void setCommandIndex(int index) { m_commandIndex = index; }
    const QString& commandGroupName() const { return m_commandGroupName; }
    void setCommandGroupName(const QString& name) { m_commandGroupName = name; }
    const QString& commandName() const { return m_commandName; }
    void setCommandName(const QString& name) { m_commandName = name; }
    int mode() const { return m_mode; }
    void setMode(int mode) { m_mode = mode; }
    int procedure() const { return m_procedure; }
    void setProcedure(int procedure) { m_procedure = procedure; }

    QString actionDescriptor() const override;
    corvane::FourCharCode editorTabID() const override;
    void writeTo(corvane::PlistValue& dict) const override;

protected:
    TVKBuiltInAction(const TVKBuiltInAction&) = default;

private:
    TVKKeystrokeList m_sequence;
    int m_commandGroupIndex = 0;
    int m_commandIndex = 0;
    QString m_commandGroupName;
    QString m_commandName;
    int m_mode = 0;
    int m_procedure = 0;
};

CORVANE_ACTION_FOR_CONTROL_KIND(TVKButtonBuiltInAction, TVKBuiltInAction, 257)
CORVANE_ACTION_FOR_CONTROL_KIND(TVKEncoderBuiltInAction, TVKBuiltInAction, 513)
CORVANE_ACTION_FOR_CONTROL_KIND(TVK4WayBuiltInAction, TVKBuiltInAction, 769)
CORVANE_ACTION_FOR_CONTROL_KIND(TVKShuttleBuiltInAction, TVKBuiltInAction, 1025)
CORVANE_ACTION_FOR_CONTROL_KIND(TVKJogBuiltInAction, TVKBuiltInAction, 1281)

// The LCD strip's built-in function; its sample fills the display's width.
class TVKBuiltInLCDDisplayAction : public TVKBuiltInAction
{
public:
    static constexpr qint32 kActionType = 0x100008;
    using TVKBuiltInAction::TVKBuiltInAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }
    QString text() const;

private:
    TVKBuiltInLCDDisplayAction(const TVKBuiltInLCDDisplayAction&) = default;
};

class TVKBuiltInTimecodeDisplayAction : public TVKBuiltInAction
{
public:
    static constexpr qint32 kActionType = 0x100208;
    using TVKBuiltInAction::TVKBuiltInAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }
    QString text() const { return QStringLiteral("01:00:00:00"); }

private:
    TVKBuiltInTimecodeDisplayAction(const TVKBuiltInTimecodeDisplayAction&) = default;
};
