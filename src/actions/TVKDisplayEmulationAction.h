#pragma once

#include "actions/TVKDisplayAction.h"

// Shows what the emulated console sends for this display: one of its LCD lines or its pot values.
class TVKDisplayEmulationAction : public TVKLCDDisplayAction
{
public:
    TVKDisplayEmulationAction() = default;
    explicit TVKDisplayEmulationAction(TVKControl* control) : TVKLCDDisplayAction(control) {}
    TVKDisplayEmulationAction(TVKControl* control, int source);
    TVKDisplayEmulationAction(const corvane::PlistValue& archive, TVKControl* control);

    int displaySource() const { return m_displaySource; }
    // Sources 0 to 2 name themselves ("LCD Line 1", "LCD Line 2", "Pot Values"); the text is
    // kept when the source is unchanged and a text exists, and for other sources.
    void setDisplaySource(int source);

    QString text() override { return m_text; }
    const QString& storedText() const { return m_text; }

    QString actionDescriptor() const override;
    corvane::FourCharCode editorTabID() const override;
    void writeTo(corvane::PlistValue& dict) const override;

protected:
    TVKDisplayEmulationAction(const TVKDisplayEmulationAction&) = default;

private:
    int m_displaySource = 0;
    QString m_text;
};

class TVKLCDDisplayEmulationAction : public TVKDisplayEmulationAction
{
public:
    static constexpr qint32 kActionType = 0x100003;

    TVKLCDDisplayEmulationAction() = default;
    explicit TVKLCDDisplayEmulationAction(TVKControl* control);
    TVKLCDDisplayEmulationAction(TVKControl* control, int source);
    TVKLCDDisplayEmulationAction(const corvane::PlistValue& archive, TVKControl* control);

    int firstEncoder() const { return m_firstEncoder; }
    int numEncoders() const { return m_numEncoders; }
    int displayWidth() const { return m_displayWidth; }

    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }
    void writeTo(corvane::PlistValue& dict) const override;

private:
    TVKLCDDisplayEmulationAction(const TVKLCDDisplayEmulationAction&) = default;
    // The encoder range and width of the owning display, from the surface description.
    void readDisplayInfo();
    int m_firstEncoder = 0;
    int m_numEncoders = 0;
    int m_displayWidth = 0;
};

// The timecode display under emulation; its descriptor follows the emulation mode of the keyset
// being edited.
class TVKTimecodeDisplayEmulationAction : public TVKDisplayAction
{
public:
    static constexpr qint32 kActionType = 0x100203;
    using TVKDisplayAction::TVKDisplayAction;

    QString text() override { return QStringLiteral("01:00:00:00"); }
    std::unique_ptr<TVKAction> copyWithZone() const override;
    QString actionDescriptor() const override;
    qint32 actionType() const override { return kActionType; }
    corvane::FourCharCode editorTabID() const override { return corvane::fourCC("EMUL"); }

private:
    TVKTimecodeDisplayEmulationAction(const TVKTimecodeDisplayEmulationAction&) = default;
};
