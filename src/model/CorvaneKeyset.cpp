#include "model/CorvaneKeyset.h"

#include "core/StoredKeys.h"
#include "model/ArchiveReading.h"
#include "model/ArchiveRepairLog.h"
#include "model/CorvaneLayer.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "surface/SurfaceConstants.h"
#include "surface/TVK_Constant_Server.h"

namespace key = corvane::key;

using corvane::PlistValue;

namespace {

int numLayers()
{
    return corvane::surfaceConstants().numLayers();
}

const QString kDefaultKeysetName = QStringLiteral("Default");
constexpr corvane::FourCharCode kDefaultSignature = corvane::fourCC("----");

} // namespace

CorvaneKeyset::CorvaneKeyset(TVKModelData* owner)
    : CorvaneKeyset(kDefaultKeysetName, kDefaultSignature, QString(), owner)
{}

CorvaneKeyset::CorvaneKeyset(const QString& name, corvane::FourCharCode signature,
                             TVKModelData* owner)
    : CorvaneKeyset(name, signature, QString(), owner)
{}

CorvaneKeyset::CorvaneKeyset(const QString& name, corvane::FourCharCode signature,
                             std::optional<QString> bundleID, TVKModelData* owner)
    : TVKKeyset(name, signature, std::move(bundleID), owner)
{
    createLayers();
}

CorvaneKeyset::CorvaneKeyset(const PlistValue& archive, TVKModelData* owner)
    : TVKKeyset(archive, owner)
{
    // Fresh layers are made only where the archive has none: making all four first and
    // replacing them would double the work of loading a configuration.
    readLayersFromArchive(archive);
    createMissingLayers();
    m_reverseRBButtons = corvane::archivedFlag(archive.value(key::RvrsRBBtns), false);
}

void CorvaneKeyset::createLayers()
{
    const int count = numLayers();
    m_layers.resize(std::max<std::size_t>(m_layers.size(), std::size_t(count)));
    for (int i = 0; i < count; ++i)
        m_layers[std::size_t(i)] = std::make_unique<CorvaneLayer>(owner(), i, this);
}

void CorvaneKeyset::createMissingLayers()
{
    for (int i = int(m_layers.size()); i < numLayers(); ++i) {
        if (corvane::ArchiveRepairLog::isActive())
            corvane::ArchiveRepairLog::record(
                {name(), i, -1, false, -1, QStringLiteral("layer missing; made afresh")});
        m_layers.push_back(std::make_unique<CorvaneLayer>(owner(), i, this));
    }
}

std::unique_ptr<TVKLayer> CorvaneKeyset::createLayerFromArchive(const PlistValue& dict, int index)
{
    return std::make_unique<CorvaneLayer>(dict, owner(), index, this);
}

std::unique_ptr<TVKKeyset> CorvaneKeyset::copyWithoutEmulation() const
{
    auto copy = std::make_unique<CorvaneKeyset>(
        name(), signature(), hasBundleID() ? std::optional<QString>(bundleID()) : std::nullopt,
        owner());
    copyToWithoutEmulation(*copy);
    return copy;
}

void CorvaneKeyset::writeTo(PlistValue& dict) const
{
    TVKKeyset::writeTo(dict);
    // The one key without the prefix; stored configurations depend on it.
    dict.insert(key::RvrsRBBtns, PlistValue(qint64(m_reverseRBButtons ? 1 : 0)));
}

CorvaneLayer* CorvaneKeyset::selectedCorvaneLayer() const
{
    const int index = owner() ? owner()->selectedLayerIndex() : 0;
    return dynamic_cast<CorvaneLayer*>(layerAtIndex(index));
}

void CorvaneKeyset::createCorvaneNVGroupNamed(const QString& name)
{
    if (CorvaneLayer* layer = selectedCorvaneLayer())
        layer->createCorvaneNVGroupNamed(name);
}

QString CorvaneKeyset::nameOfGroupWithID(int group) const
{
    const CorvaneLayer* layer = selectedCorvaneLayer();
    return layer ? layer->nameOfGroupWithID(group) : QStringLiteral("Unknown!");
}

int CorvaneKeyset::numCorvaneNVGroups() const
{
    const CorvaneLayer* layer = selectedCorvaneLayer();
    return layer ? layer->numCorvaneNVGroups() : 0;
}

void CorvaneKeyset::addButtonID(int button, int group)
{
    if (CorvaneLayer* layer = selectedCorvaneLayer())
        layer->addButtonID(button, group);
}

void CorvaneKeyset::deleteButtonID(int button, int group)
{
    if (CorvaneLayer* layer = selectedCorvaneLayer())
        layer->deleteButtonID(button, group);
}

bool CorvaneKeyset::buttonID(int button, int& group) const
{
    const CorvaneLayer* layer = selectedCorvaneLayer();
    return layer && layer->buttonID(button, group);
}

void CorvaneKeyset::deleteCorvaneNVGroup(int group)
{
    if (CorvaneLayer* layer = selectedCorvaneLayer())
        layer->deleteCorvaneNVGroup(group);
}

const PlistValue* CorvaneKeyset::corvaneNVGroupWithID(int group) const
{
    const CorvaneLayer* layer = selectedCorvaneLayer();
    return layer ? layer->corvaneNVGroupWithID(group) : nullptr;
}

int CorvaneKeyset::corvaneNVGroupForButtonWithID(int button) const
{
    const CorvaneLayer* layer = selectedCorvaneLayer();
    return layer ? layer->corvaneNVGroupForButtonWithID(button) : -1;
}

int CorvaneKeyset::nextAvailableCorvaneNVGroupColor()
{
    CorvaneLayer* layer = selectedCorvaneLayer();
    return layer ? layer->nextAvailableCorvaneNVGroupColor() : -1;
}

void CorvaneKeyset::putBackCorvaneNVGroupColor(int color)
{
    if (CorvaneLayer* layer = selectedCorvaneLayer())
        layer->putBackCorvaneNVGroupColor(color);
}

int CorvaneKeyset::colorForCorvaneNVGroupWithID(int group) const
{
    const CorvaneLayer* layer = selectedCorvaneLayer();
    return layer ? layer->colorForCorvaneNVGroupWithID(group) : 0;
}

int CorvaneKeyset::colorForCorvaneNVGroup(const PlistValue& group) const
{
    const CorvaneLayer* layer = selectedCorvaneLayer();
    return layer ? layer->colorForCorvaneNVGroup(group) : 0;
}

const std::vector<PlistValue>* CorvaneKeyset::corvaneNVGroups() const
{
    const CorvaneLayer* layer = selectedCorvaneLayer();
    return layer ? &layer->corvaneNVGroups() : nullptr;
}
