#include "actions/TVKDisplayAction.h"

#include "core/Log.h"

QString TVKDisplayAction::text()
{
    corvane::log(QStringLiteral("TVKDisplayAction must override - (NSString *)text"));
    return QString();
}
