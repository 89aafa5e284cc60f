#include "actions/TVKAction.h"

#include "core/Log.h"
#include "core/StoredKeys.h"

namespace key = corvane::key;

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
    dict.insert(key::ActnType, corvane::PlistValue(qint64(actionType())));
}
