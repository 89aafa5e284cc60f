#include "actions/TVKDisplayControlNameAction.h"

#include "actions/ActionText.h"
#include "core/StoredKeys.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "surface/TVK_Constant_Server.h"

#include <limits>

namespace key = corvane::key;

using corvane::PlistValue;

namespace {

const TVKControl* sourceControl(const TVKControl* display, int layer, int group, int index)
{
    // The picture always shows the keyset being edited.
    if (const TVKModelData* model = TVKModelData::defaultModelData()) {
        if (model->numberOfKeysets() > 0)
            return model->controlForKeyset(model->selectedKeysetIndex(), layer, group, index);
    }
    if (display && display->keyset())
        return display->keyset()->controlForLayer(layer, group, index);
    return nullptr;
}

} // namespace

TVKDisplayControlNameAction::TVKDisplayControlNameAction(TVKControl* control)
    : TVKLCDDisplayAction(control)
{
    getSourceControlInfoFromControl();
}

TVKDisplayControlNameAction::TVKDisplayControlNameAction(const PlistValue& archive,
                                                         TVKControl* control)
    : TVKLCDDisplayAction(archive, control)
{
    m_sourceLayer = qint32(archive.value(key::LayerIndex).toInteger());
    m_sourceControlGroup = qint32(archive.value(key::GroupID).toInteger());
    m_firstSourceControl = qint32(archive.value(key::ControlIndex).toInteger());
    m_numSourceControls = qint32(archive.value(key::Count).toInteger());
    m_displayWidth = qint32(archive.value(key::Width).toInteger());
}

void TVKDisplayControlNameAction::setSourceControls(int layer, int group, int first, int count,
                                                    int width)
{
    m_sourceLayer = layer;
    m_sourceControlGroup = group;
    m_firstSourceControl = first;
    m_numSourceControls = count;
    m_displayWidth = width;
}

void TVKDisplayControlNameAction::getSourceControlInfoFromControl()
{
    const TVKControl* display = owningControl();
    if (!display)
        return;
    const int layer = display->layer() ? display->layer()->index() : m_sourceLayer;
    if (const TVKSourceControlRecord* record =
            corvane::surfaceConstants().sourceControlGroupFromGroup(display->groupID(),
                                                                    display->index())) {
        setSourceControls(layer, record->sourceControlGroup, record->firstSourceControl,
                          record->numberOfSourceControls, record->displayWidth);
    } else {
        m_sourceLayer = layer;
    }
}

bool TVKDisplayControlNameAction::needsUpdateForThisControl(const TVKControl* control) const
{
    if (!control || control->groupID() != m_sourceControlGroup)
        return false;
    const qint64 index = control->index();
    return index >= m_firstSourceControl &&
           index < qint64(m_firstSourceControl) + qint64(m_numSourceControls);
}

QString TVKDisplayControlNameAction::labelForControl(int, const TVKControl* control) const
{
    return control ? control->displayableName() : QString();
}

QString TVKDisplayControlNameAction::text()
{
    getSourceControlInfoFromControl();
    static const QString kBlanks = QStringLiteral("       ");
    QString result;
    if (m_numSourceControls > 0) {
        const int cellWidth = m_displayWidth / m_numSourceControls;
        const qsizetype nameWidth = qMax(cellWidth - 1, 0);
        // No group holds more than 240 controls; a damaged count must not spin for ages.
        const int count = qMin(m_numSourceControls, 240);
        for (int i = 0; i < count; ++i) {
            const qint64 wideIndex = qint64(m_firstSourceControl) + i;
            if (wideIndex > std::numeric_limits<int>::max())
                break;
            const int index = int(wideIndex);
            const QString label = labelForControl(
                index, sourceControl(owningControl(), m_sourceLayer, m_sourceControlGroup, index));
            if (label.size() > nameWidth)
                result += label.left(nameWidth);
            else
                result += label + kBlanks.left(nameWidth - label.size());
            result += QLatin1Char(' ');
        }
    }
    m_text = result;
    return m_text;
}

void TVKDisplayControlNameAction::writeTo(PlistValue& dict) const
{
    TVKLCDDisplayAction::writeTo(dict);
    dict.insert(key::LayerIndex, PlistValue(m_sourceLayer));
    dict.insert(key::GroupID, PlistValue(m_sourceControlGroup));
    dict.insert(key::ControlIndex, PlistValue(m_firstSourceControl));
    dict.insert(key::Count, PlistValue(m_numSourceControls));
    dict.insert(key::Width, PlistValue(m_displayWidth));
}

std::unique_ptr<TVKAction> TVKLCDDisplayEncoderNameAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKLCDDisplayEncoderNameAction(*this));
}

std::unique_ptr<TVKAction> TVKLCDDisplayButtonNameAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKLCDDisplayButtonNameAction(*this));
}

// ---- NV parameter names

TVKFrameletCorvaneNVLCDDisplayButtonNameAction::TVKFrameletCorvaneNVLCDDisplayButtonNameAction(
    TVKControl* control)
    : TVKDisplayControlNameAction(control)
{
    getSourceControlInfoFromControl();
}

TVKFrameletCorvaneNVLCDDisplayButtonNameAction::TVKFrameletCorvaneNVLCDDisplayButtonNameAction(
    const PlistValue& archive, TVKControl* control)
    : TVKDisplayControlNameAction(archive, control)
{
    m_lcdDisplayMode = unsigned(archive.value(key::Mode).toUnsigned() & 0xFFFFFFFFu);
}

void TVKFrameletCorvaneNVLCDDisplayButtonNameAction::getSourceControlInfoFromControl()
{
    const TVKControl* display = owningControl();
    if (!display)
        return;
    const int layer = display->layer() ? display->layer()->index() : sourceLayer();
    setSourceControls(layer, kParameterGroup, 0, kParametersPerFunction, 40);
}

QString
TVKFrameletCorvaneNVLCDDisplayButtonNameAction::labelForControl(int controlIndex,
                                                                const TVKControl* control) const
{
    if (m_lcdDisplayMode != 1)
        return TVKDisplayControlNameAction::labelForControl(controlIndex, control);
    const qint64 function = controlIndex / kParametersPerFunction + 1;
    const qint64 parameter = controlIndex % kParametersPerFunction + 1;
    return QStringLiteral("(%1: %2)")
        .arg(QStringLiteral("F") + QString::number(function),
             QStringLiteral("P") + QString::number(parameter));
}

std::unique_ptr<TVKAction> TVKFrameletCorvaneNVLCDDisplayButtonNameAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKFrameletCorvaneNVLCDDisplayButtonNameAction(*this));
}

QString TVKFrameletCorvaneNVLCDDisplayButtonNameAction::actionDescriptor() const
{
    switch (m_lcdDisplayMode) {
    case 0:
        return QStringLiteral("Button Names");
    case 1:
        return QStringLiteral("Function/Parameter Numbers");
    default:
        return QStringLiteral("??");
    }
}

void TVKFrameletCorvaneNVLCDDisplayButtonNameAction::writeTo(PlistValue& dict) const
{
    TVKDisplayControlNameAction::writeTo(dict);
    dict.insert(key::Mode, PlistValue(quint64(m_lcdDisplayMode)));
}
