#pragma once

#include "actions/TVKAction.h"

// A fixed function of the surface itself (layer selectors, developer mode, raw Ethernet ...).
// The mode is the function; the classes differ only in the kind of control they serve.
class TVKSpecialAction : public TVKAction
{
public:
    // The functions a special action may hold; a mode outside them is never stored.
    static constexpr int kModeCount = 11;

    TVKSpecialAction() = default;
    explicit TVKSpecialAction(TVKControl* control) : TVKAction(control) {}
    // initWithControl:andMode:
    TVKSpecialAction(TVKControl* control, int mode);
    // Reads "TVKSpMode"; a value outside the functions reads as 0 ("Undefined").
    TVKSpecialAction(const corvane::PlistValue& archive, TVKControl* control);

    int mode() const { return m_mode; }
    // A mode outside the functions is refused and leaves the mode as it was.
    void setMode(int mode);

    // The text of the mode, as the surface constants give it.
    QString actionDescriptor() const override;
    corvane::FourCharCode editorTabID() const override;
    void writeTo(corvane::PlistValue& dict) const override;

protected:
    TVKSpecialAction(const TVKSpecialAction&) = default;

private:
    int m_mode = 0;
};

class TVKButtonSpecialAction final : public TVKSpecialAction
{
public:
    static constexpr qint32 kActionType = 261;
    using TVKSpecialAction::TVKSpecialAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }

private:
    TVKButtonSpecialAction(const TVKButtonSpecialAction&) = default;
};

class TVKEncoderSpecialAction final : public TVKSpecialAction
{
public:
    static constexpr qint32 kActionType = 517;
    using TVKSpecialAction::TVKSpecialAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }

private:
    TVKEncoderSpecialAction(const TVKEncoderSpecialAction&) = default;
};

class TVKSpecial4WayAction final : public TVKSpecialAction
{
public:
    static constexpr qint32 kActionType = 773;
    using TVKSpecialAction::TVKSpecialAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }

private:
    TVKSpecial4WayAction(const TVKSpecial4WayAction&) = default;
};

class TVKShuttleSpecialAction final : public TVKSpecialAction
{
public:
    static constexpr qint32 kActionType = 1029;
    using TVKSpecialAction::TVKSpecialAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }

private:
    TVKShuttleSpecialAction(const TVKShuttleSpecialAction&) = default;
};

class TVKSpecialJogAction final : public TVKSpecialAction
{
public:
    static constexpr qint32 kActionType = 1285;
    using TVKSpecialAction::TVKSpecialAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }

private:
    TVKSpecialJogAction(const TVKSpecialJogAction&) = default;
};
