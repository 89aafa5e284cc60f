#include "actions/TVKDisplayAction.h"

#include "actions/TVKBuiltInAction.h"
#include "core/Log.h"

QString TVKDisplayAction::text()
{
    corvane::log(QStringLiteral("TVKDisplayAction must override - (NSString *)text"));
    return QString();
}

QString corvane::displaySampleText(TVKAction* action)
{
    if (auto* display = dynamic_cast<TVKDisplayAction*>(action))
        return display->text();
    if (auto* lcd = dynamic_cast<const TVKBuiltInLCDDisplayAction*>(action))
        return lcd->text();
    if (auto* timecode = dynamic_cast<const TVKBuiltInTimecodeDisplayAction*>(action))
        return timecode->text();
    return QString();
}
