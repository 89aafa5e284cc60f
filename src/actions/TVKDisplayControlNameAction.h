#pragma once

#include "actions/TVKDisplayAction.h"

// Shows the names of a row of controls, one fixed-width cell each. Which controls feed the
// display, and how wide it is, comes from the surface description for the owning display.
class TVKDisplayControlNameAction : public TVKLCDDisplayAction
{
public:
    TVKDisplayControlNameAction() = default;
    explicit TVKDisplayControlNameAction(TVKControl* control);
    TVKDisplayControlNameAction(const corvane::PlistValue& archive, TVKControl* control);

    // Refreshes the source fields from the owning display.
    virtual void getSourceControlInfoFromControl();
    // Whether a change to that control changes what this display shows.
    bool needsUpdateForThisControl(const TVKControl* control) const;

    // Builds and keeps the cells: each name cut or padded to the cell width less one, then a
    // blank. Padding comes from a run of seven blanks, so cells wider than eight are short.
    QString text() override;

    int sourceLayer() const { return m_sourceLayer; }
    int sourceControlGroup() const { return m_sourceControlGroup; }
    int firstSourceControl() const { return m_firstSourceControl; }
    int numSourceControls() const { return m_numSourceControls; }
    int displayWidth() const { return m_displayWidth; }
    void setSourceControls(int layer, int group, int first, int count, int width);

    void writeTo(corvane::PlistValue& dict) const override;

protected:
    TVKDisplayControlNameAction(const TVKDisplayControlNameAction&) = default;
    // The label of one cell; the control-name classes show the control's displayable name.
    virtual QString labelForControl(int controlIndex, const TVKControl* control) const;

private:
    int m_sourceLayer = 0;
    int m_sourceControlGroup = 0;
    int m_firstSourceControl = 0;
    int m_numSourceControls = 0;
    int m_displayWidth = 0;
    QString m_text;
};

class TVKLCDDisplayEncoderNameAction : public TVKDisplayControlNameAction
{
public:
    static constexpr qint32 kActionType = 0x100002;
    using TVKDisplayControlNameAction::TVKDisplayControlNameAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    QString actionDescriptor() const override { return QStringLiteral("Encoder Names"); }
    qint32 actionType() const override { return kActionType; }
    corvane::FourCharCode editorTabID() const override { return corvane::fourCC("ENAM"); }

private:
    TVKLCDDisplayEncoderNameAction(const TVKLCDDisplayEncoderNameAction&) = default;
};

class TVKLCDDisplayButtonNameAction : public TVKDisplayControlNameAction
{
public:
    static constexpr qint32 kActionType = 0x100006;
    using TVKDisplayControlNameAction::TVKDisplayControlNameAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    QString actionDescriptor() const override { return QStringLiteral("Button Names"); }
    qint32 actionType() const override { return kActionType; }
    corvane::FourCharCode editorTabID() const override { return corvane::fourCC("BNAM"); }

private:
    TVKLCDDisplayButtonNameAction(const TVKLCDDisplayButtonNameAction&) = default;
};

// The NV display line naming the five parameter buttons. Mode 0 shows the buttons' names, mode 1
// function and parameter numbers ("(F1: P1)"...).
class TVKFrameletCorvaneNVLCDDisplayButtonNameAction : public TVKDisplayControlNameAction
{
public:
    static constexpr qint32 kActionType = 0x101100;
    static constexpr int kParameterGroup = 27;
    static constexpr int kParametersPerFunction = 5;

    TVKFrameletCorvaneNVLCDDisplayButtonNameAction() = default;
    explicit TVKFrameletCorvaneNVLCDDisplayButtonNameAction(TVKControl* control);
    TVKFrameletCorvaneNVLCDDisplayButtonNameAction(const corvane::PlistValue& archive,
                                                   TVKControl* control);

    unsigned lcdDisplayMode() const { return m_lcdDisplayMode; }
    void setLcdDisplayMode(unsigned mode) { m_lcdDisplayMode = mode; }

    void getSourceControlInfoFromControl() override;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    QString actionDescriptor() const override;
    qint32 actionType() const override { return kActionType; }
    corvane::FourCharCode editorTabID() const override { return corvane::fourCC("ENAM"); }
    void writeTo(corvane::PlistValue& dict) const override;

protected:
    QString labelForControl(int controlIndex, const TVKControl* control) const override;

private:
    TVKFrameletCorvaneNVLCDDisplayButtonNameAction(
        const TVKFrameletCorvaneNVLCDDisplayButtonNameAction&) = default;
    unsigned m_lcdDisplayMode = 0;
};
