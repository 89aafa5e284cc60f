#include "actions/CorvaneLCDButtonDisplayIconAction.h"

#include "core/StoredKeys.h"

namespace key = corvane::key;

using corvane::PlistValue;

CorvaneLCDButtonDisplayIconAction::CorvaneLCDButtonDisplayIconAction(TVKControl* control,
                                                                     int iconIndex)
    : TVKDisplayAction(control), m_romIcon(iconIndex)
{}

CorvaneLCDButtonDisplayIconAction::CorvaneLCDButtonDisplayIconAction(const PlistValue& archive,
                                                                     TVKControl* control)
    : TVKDisplayAction(archive, control)
{
    m_romIcon = qint32(archive.value(key::IconIndex).toInteger());
}

std::unique_ptr<TVKAction> CorvaneLCDButtonDisplayIconAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new CorvaneLCDButtonDisplayIconAction(*this));
}

QString CorvaneLCDButtonDisplayIconAction::actionDescriptor() const
{
    return QStringLiteral("ROM Icon #") + QString::number(qint64(m_romIcon));
}

void CorvaneLCDButtonDisplayIconAction::writeTo(PlistValue& dict) const
{
    TVKDisplayAction::writeTo(dict);
    dict.insert(key::IconIndex, PlistValue(m_romIcon));
}
