#include "actions/TVKSpecialAction.h"

#include "core/StoredKeys.h"
#include "surface/SurfaceConstants.h"
#include "surface/TVK_Constant_Server.h"

namespace key = corvane::key;

namespace {

bool isSpecialMode(qint64 mode)
{
    return mode >= 0 && mode < TVKSpecialAction::kModeCount;
}

} // namespace

TVKSpecialAction::TVKSpecialAction(TVKControl* control, int mode) : TVKAction(control)
{
    setMode(mode);
}

TVKSpecialAction::TVKSpecialAction(const corvane::PlistValue& archive, TVKControl* control)
    : TVKAction(archive, control)
{
    const qint64 mode = archive.value(key::SpMode).toInteger(0);
    // The descriptor table has eleven entries; a stored mode beyond them would read past it.
    m_mode = isSpecialMode(mode) ? int(mode) : 0;
}

void TVKSpecialAction::setMode(int mode)
{
    if (isSpecialMode(mode))
        m_mode = mode;
}

QString TVKSpecialAction::actionDescriptor() const
{
    // A tool that reads archives without having made the surface constants still gets the texts.
    return corvane::surfaceConstants().specialModeDescriptor(m_mode);
}

corvane::FourCharCode TVKSpecialAction::editorTabID() const
{
    return corvane::fourCC("SPEC");
}

void TVKSpecialAction::writeTo(corvane::PlistValue& dict) const
{
    TVKAction::writeTo(dict);
    dict.insert(key::SpMode, corvane::PlistValue(qint64(m_mode)));
}
