#pragma once

#include "actions/TVKAction.h"

// Stands for "no action" where an object is required: the message that sends a control's action
// to the service when it has none, and the undo records of control edits.
class TVKNULLAction final : public TVKAction
{
public:
    static constexpr qint32 kActionType = 7;
    using TVKAction::TVKAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }
    // No inspector tab edits it.
    corvane::FourCharCode editorTabID() const override { return 0; }

private:
    TVKNULLAction(const TVKNULLAction&) = default;
};

// The same for displays.
class TVKNULLDisplayAction final : public TVKAction
{
public:
    static constexpr qint32 kActionType = 9;
    using TVKAction::TVKAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }
    corvane::FourCharCode editorTabID() const override { return 0; }

private:
    TVKNULLDisplayAction(const TVKNULLDisplayAction&) = default;
};
