#include "actions/TVKAction.h"

#include "core/Log.h"

TVKAction::TVKAction(const corvane::PlistValue& /*archive*/, TVKControl* control)
    : m_owningControl(control)
{}

corvane::FourCharCode TVKAction::editorTabID() const
{
    corvane::log(QStringLiteral("TVKAction subclasses MUST override editorTabID"));
    return 0;
}

void TVKAction::writeTo(corvane::PlistValue& dict) const
{
    dict.insert(QStringLiteral("TVKActnType"), corvane::PlistValue(qint64(actionType())));
}
