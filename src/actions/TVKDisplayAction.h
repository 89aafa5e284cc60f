#pragma once

#include "actions/TVKAction.h"

// What a display shows. Every display action can also give the sample text the program shows in
// its own picture of the display; producing it may refresh cached fields, hence non-const.
class TVKDisplayAction : public TVKAction
{
public:
    using TVKAction::TVKAction;

    virtual QString text();

protected:
    TVKDisplayAction(const TVKDisplayAction&) = default;
};

// The LCD strip family: custom text, control names and emulated console text.
class TVKLCDDisplayAction : public TVKDisplayAction
{
public:
    using TVKDisplayAction::TVKDisplayAction;

protected:
    TVKLCDDisplayAction(const TVKLCDDisplayAction&) = default;
};

namespace corvane {

// The sample text of whatever a display carries: a display action's text, or the fixed sample of
// a built-in display command (those are built-in commands first, so they do not derive from
// TVKDisplayAction). Empty for no action and for actions that show no text.
QString displaySampleText(TVKAction* action);

} // namespace corvane
