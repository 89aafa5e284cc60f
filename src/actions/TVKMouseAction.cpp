#include "actions/TVKMouseAction.h"

#include "actions/ActionText.h"
#include "core/StoredKeys.h"
#include "surface/TVK_Constant_Server.h"

#include <QLocale>

namespace key = corvane::key;

using corvane::PlistValue;

TVKMouseAction::TVKMouseAction(unsigned operation, TVKControl* control)
    : TVKAction(control), m_operation(operation)
{}

TVKMouseAction::TVKMouseAction(const PlistValue& archive, TVKControl* control)
    : TVKAction(archive, control)
{
    m_operation = unsigned(archive.value(key::MOp).toUnsigned() & 0xFFFFFFFFu);
    m_locationType = unsigned(archive.value(key::LocType).toUnsigned() & 0xFFFFFFFFu);
    m_location = pointFromString(archive.value(key::Loc).toString());
    m_modifierFlags = unsigned(archive.value(key::Mods).toUnsigned() & 0xFFFFFFFFu);
    m_usePartialWindowName = quint16(archive.value(key::Partial).toInteger()) != 0;
    const PlistValue& name = archive.value(key::WName);
    if (name.isString())
        m_windowName = name.toString();
}

QString TVKMouseAction::stringFromPoint(QPointF point)
{
    const QLocale c = QLocale::c();
    return QLatin1Char('{') + c.toString(point.x(), 'g', QLocale::FloatingPointShortest) +
           QStringLiteral(", ") + c.toString(point.y(), 'g', QLocale::FloatingPointShortest) +
           QLatin1Char('}');
}

QPointF TVKMouseAction::pointFromString(const QString& text)
{
    QString inner = text.trimmed();
    if (inner.startsWith(QLatin1Char('{')))
        inner.remove(0, 1);
    if (inner.endsWith(QLatin1Char('}')))
        inner.chop(1);
    const QStringList parts = inner.split(QLatin1Char(','));
    if (parts.size() != 2)
        return QPointF();
    bool okX = false;
    bool okY = false;
    const double x = parts.at(0).trimmed().toDouble(&okX);
    const double y = parts.at(1).trimmed().toDouble(&okY);
    if (!okX || !okY)
        return QPointF();
    return QPointF(x, y);
}

QString TVKMouseAction::actionDescriptor() const
{
    const TVK_Constant_Server& constants = corvane::surfaceConstants();
    // Operation 10 has no text of its own; it describes itself with an empty one.
    QString operationText = constants.mouseActionString(int(m_operation));
    if (operationText.isNull())
        operationText = QLatin1String("");
    const double x = isWidthFraction(m_locationType) ? m_location.x() * 100.0 : m_location.x();
    return corvane::fillFormat(constants.captureModeShortFormatString(int(m_locationType)),
                               {operationText, m_windowName}, {m_location.y(), x});
}

corvane::FourCharCode TVKMouseAction::editorTabID() const
{
    return corvane::fourCC("MOUS");
}

void TVKMouseAction::writeTo(PlistValue& dict) const
{
    TVKAction::writeTo(dict);
    dict.insert(key::MOp, PlistValue(quint64(m_operation)));
    dict.insert(key::LocType, PlistValue(quint64(m_locationType)));
    dict.insert(key::Loc, PlistValue(stringFromPoint(m_location)));
    dict.insert(key::Mods, PlistValue(quint64(m_modifierFlags)));
    dict.insert(key::Partial, PlistValue(m_usePartialWindowName ? 1 : 0));
    if (!m_windowName.isNull())
        dict.insert(key::WName, PlistValue(m_windowName));
}
