#pragma once

#include "actions/TVKDisplayAction.h"

// One of the icons held in the LCD button's own memory.
class CorvaneLCDButtonDisplayIconAction : public TVKDisplayAction
{
public:
    static constexpr qint32 kActionType = 0x100707;

    CorvaneLCDButtonDisplayIconAction() = default;
    explicit CorvaneLCDButtonDisplayIconAction(TVKControl* control) : TVKDisplayAction(control) {}
    CorvaneLCDButtonDisplayIconAction(TVKControl* control, int iconIndex);
    CorvaneLCDButtonDisplayIconAction(const corvane::PlistValue& archive, TVKControl* control);

    int romIcon() const { return m_romIcon; }
    void setRomIcon(int icon) { m_romIcon = icon; }

    // An icon shows no text.
    QString text() override { return QString(); }
    std::unique_ptr<TVKAction> copyWithZone() const override;
    QString actionDescriptor() const override;
    qint32 actionType() const override { return kActionType; }
    corvane::FourCharCode editorTabID() const override { return corvane::fourCC("ICON"); }
    void writeTo(corvane::PlistValue& dict) const override;

private:
    CorvaneLCDButtonDisplayIconAction(const CorvaneLCDButtonDisplayIconAction&) = default;
    int m_romIcon = 0;
};
