#include "actions/TVKDisplayEmulationAction.h"

#include "actions/ActionText.h"
#include "core/StoredKeys.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"
#include "surface/TVK_Constant_Server.h"

namespace key = corvane::key;

using corvane::PlistValue;

TVKDisplayEmulationAction::TVKDisplayEmulationAction(TVKControl* control, int source)
    : TVKLCDDisplayAction(control)
{
    setDisplaySource(source);
}

TVKDisplayEmulationAction::TVKDisplayEmulationAction(const PlistValue& archive, TVKControl* control)
    : TVKLCDDisplayAction(archive, control)
{
    // The text is not stored: it follows from the source.
    setDisplaySource(qint32(archive.value(key::DisplaySrc).toInteger()));
}

void TVKDisplayEmulationAction::setDisplaySource(int source)
{
    const bool unchanged = source == m_displaySource && !m_text.isNull();
    m_displaySource = source;
    if (unchanged)
        return;
    switch (source) {
    case 0:
        m_text = QStringLiteral("LCD Line 1");
        break;
    case 1:
        m_text = QStringLiteral("LCD Line 2");
        break;
    case 2:
        m_text = QStringLiteral("Pot Values");
        break;
    default:
        break;
    }
}

QString TVKDisplayEmulationAction::actionDescriptor() const
{
    return QStringLiteral("Emulation- ") + corvane::objectText(m_text);
}

corvane::FourCharCode TVKDisplayEmulationAction::editorTabID() const
{
    return corvane::fourCC("EMUL");
}

void TVKDisplayEmulationAction::writeTo(PlistValue& dict) const
{
    TVKLCDDisplayAction::writeTo(dict);
    dict.insert(key::DisplaySrc, PlistValue(m_displaySource));
}

// ---- LCD

TVKLCDDisplayEmulationAction::TVKLCDDisplayEmulationAction(TVKControl* control)
    : TVKDisplayEmulationAction(control)
{
    readDisplayInfo();
}

TVKLCDDisplayEmulationAction::TVKLCDDisplayEmulationAction(TVKControl* control, int source)
    : TVKDisplayEmulationAction(control, source)
{
    readDisplayInfo();
}

TVKLCDDisplayEmulationAction::TVKLCDDisplayEmulationAction(const PlistValue& archive,
                                                           TVKControl* control)
    : TVKDisplayEmulationAction(archive, control)
{
    m_firstEncoder = qint32(archive.value(key::ControlIndex).toInteger());
    m_numEncoders = qint32(archive.value(key::Count).toInteger());
    m_displayWidth = qint32(archive.value(key::Width).toInteger());
}

void TVKLCDDisplayEmulationAction::readDisplayInfo()
{
    const TVKControl* display = owningControl();
    if (!display)
        return;
    const TVK_Constant_Server& constants = corvane::surfaceConstants();
    if (const TVKEmulatedDisplayRecord* record =
            constants.emulatedDisplayInfoFromGroup(display->groupID(), display->index())) {
        m_numEncoders = record->numberOfEncoders;
        m_displayWidth = record->displayWidth;
    }
    // The emulated range starts where the display's own control names start.
    if (const TVKSourceControlRecord* source =
            constants.sourceControlGroupFromGroup(display->groupID(), display->index()))
        m_firstEncoder = source->firstSourceControl;
}

std::unique_ptr<TVKAction> TVKLCDDisplayEmulationAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKLCDDisplayEmulationAction(*this));
}

void TVKLCDDisplayEmulationAction::writeTo(PlistValue& dict) const
{
    TVKDisplayEmulationAction::writeTo(dict);
    dict.insert(key::ControlIndex, PlistValue(m_firstEncoder));
    dict.insert(key::Count, PlistValue(m_numEncoders));
    dict.insert(key::Width, PlistValue(m_displayWidth));
}

// ---- timecode

std::unique_ptr<TVKAction> TVKTimecodeDisplayEmulationAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKTimecodeDisplayEmulationAction(*this));
}

QString TVKTimecodeDisplayEmulationAction::actionDescriptor() const
{
    const TVKModelData* model = TVKModelData::defaultModelData();
    const TVKKeyset* keyset =
        model && model->numberOfKeysets() > 0 ? model->selectedKeyset() : nullptr;
    const corvane::EmulationMode mode =
        keyset ? keyset->emulationMode() : corvane::EmulationMode::None;
    if (mode == corvane::EmulationMode::None)
        return QStringLiteral("Emulation Mode Not Active");
    return QStringLiteral("Emulation: Mode ") +
           (mode == corvane::EmulationMode::A ? QStringLiteral("A") : QStringLiteral("B")) +
           QStringLiteral(" Timecode Display");
}
