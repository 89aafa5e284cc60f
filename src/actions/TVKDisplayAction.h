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
