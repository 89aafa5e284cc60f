#include "model/TVKKeyset.h"

#include "actions/TVKAction.h"
#include "core/Log.h"
#include "core/StoredKeys.h"
#include "model/ArchiveReading.h"
#include "model/ArchiveRepairLog.h"
#include "model/TVKControl.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "surface/SurfaceConstants.h"
#include "surface/TVK_Constant_Server.h"

namespace key = corvane::key;

using corvane::PlistValue;

namespace {

QStringList& targetIDList()
{
    static QStringList list;
    return list;
}

int numLayers()
{
    return corvane::surfaceConstants().numLayers();
}

} // namespace

const QStringList& TVKKeyset::targetIDs()
{
    return targetIDList();
}

void TVKKeyset::resetTargetIDs()
{
    targetIDList().clear();
}

TVKKeyset::TVKKeyset(const QString& name, corvane::FourCharCode signature,
                     std::optional<QString> bundleID, TVKModelData* owner)
    : m_name(name), m_bundleID(std::move(bundleID)), m_owner(owner), m_signature(signature)
{
    m_ethernetPort = 49152;
    m_connectViaEthernet = false;
    createTargetID();
    targetIDList().append(corvane::stringFromFourCharCode(m_targetID));
    m_layers.reserve(4);
}

TVKKeyset::TVKKeyset(const PlistValue& archive, TVKModelData* owner)
    : TVKKeyset(archive.value(key::Name).toString(), corvane::archivedCode(archive.value(key::Sig)),
                corvane::archivedOptionalText(archive.value(key::AppBID)), owner)
{
    // A stored target ID is taken as it is: no uniqueness check, not added to the run's list.
    const PlistValue& targetID = archive.value(key::AppTID);
    if (targetID.isString())
        m_targetID = corvane::fourCharCodeFromString(targetID.toString());
    else
        createTargetID();
    const PlistValue& icon = archive.value(key::AppIcon);
    if (icon.isData())
        m_icon = icon.toData();
    m_emulationMode = corvane::EmulationMode(archive.value(key::EMode).toUnsigned(0));
    m_oneTouchRecord = corvane::archivedFlag(archive.value(key::OneTchRcd), false);
    m_connectViaEthernet = corvane::archivedFlag(archive.value(key::ConViaEnet), false);
    // A missing port reads as 0, not as the default of a new keyset.
    m_ethernetPort = quint32(archive.value(key::EnetPrt).toUnsigned(0));
    m_locked = corvane::archivedFlag(archive.value(key::Lock), false);
}

TVKKeyset::~TVKKeyset() = default;

void TVKKeyset::setOwner(TVKModelData* owner)
{
    // The whole subtree follows, so that no control keeps pointing at a model data it left.
    m_owner = owner;
    for (const auto& layer : m_layers) {
        layer->setOwner(owner);
        for (const auto& group : layer->groups()) {
            for (const auto& control : group)
                control->setOwner(owner);
        }
        for (const auto& group : layer->displayGroups()) {
            for (const auto& control : group)
                control->setOwner(owner);
        }
    }
}

void TVKKeyset::createLayers()
{
    corvane::log(QStringLiteral("Must Override createLayers!"));
}

std::unique_ptr<TVKLayer> TVKKeyset::createLayerFromArchive(const PlistValue& /*dict*/,
                                                            int /*index*/)
{
    corvane::log(QStringLiteral("TVKKeyset subclasses must override createLayerFromArchive"));
    return nullptr;
}

TVKLayer* TVKKeyset::layerAtIndex(int index) const
{
    if (m_layers.empty())
        return nullptr;
    const int last = std::min(numLayers(), int(m_layers.size())) - 1;
    if (index > last)
        index = last;
    if (index < 0)
        index = 0;
    return m_layers[std::size_t(index)].get();
}

TVKControl* TVKKeyset::controlForLayer(int layer, int group, int index) const
{
    const TVKLayer* target = layerAtIndex(layer);
    return target ? target->controlForGroup(group, index) : nullptr;
}

TVKControl* TVKKeyset::displayForLayer(int layer, int group, int index) const
{
    const TVKLayer* target = layerAtIndex(layer);
    return target ? target->displayControlForGroup(group, index) : nullptr;
}

void TVKKeyset::setAllControlsToActionMode(int mode)
{
    for (int i = 0; i < numLayers() && std::size_t(i) < m_layers.size(); ++i)
        m_layers[std::size_t(i)]->setAllControlsToActionMode(mode);
}

std::unique_ptr<TVKKeyset> TVKKeyset::copyWithoutEmulation() const
{
    corvane::log(QStringLiteral("subclasses of TVKKeyset MUST override copyWithoutEmulation:"));
    return nullptr;
}

bool TVKKeyset::copyToWithoutEmulation(TVKKeyset& target) const
{
    target.m_emulationMode = corvane::EmulationMode::None;
    target.m_oneTouchRecord = m_oneTouchRecord;
    target.m_connectViaEthernet = m_connectViaEthernet;
    target.m_ethernetPort = m_ethernetPort;
    target.m_bundleID = m_bundleID;
    target.m_locked = m_locked;
    for (int i = 0; i < numLayers(); ++i) {
        TVKLayer* to = target.layerAtIndex(i);
        const TVKLayer* from = layerAtIndex(i);
        if (to && from)
            to->copyFromLayerWithoutEmulation(*from);
    }
    return true;
}

void TVKKeyset::createTargetID()
{
    m_targetID = m_signature;
    // A real signature is its own target ID, shared or not.
    if (!corvane::isMissingSignature(m_signature))
        return;
    if (!m_bundleID)
        return;

    QString t = m_bundleID->section(QLatin1Char('.'), -1);
    const qsizetype n = t.size();
    // Short components are doubled before the dashes (app gives appapp-): existing
    // configurations carry target IDs made this way.
    if (n < 4)
        t = t + t +
            (n == 3   ? QStringLiteral("-")
             : n == 2 ? QStringLiteral("--")
                      : QStringLiteral("---"));
    else if (n > 4)
        t.truncate(4);

    // Once a collision is seen every remaining position is raised, and the result is not checked
    // again: a third keyset with the same component gets the second one's target ID.
    const QStringList& taken = targetIDList();
    bool collision = false;
    for (qsizetype p = 0; p < 4; ++p) {
        if (!collision && taken.contains(t))
            collision = true;
        if (!collision)
            break;
        if (p < t.size())
            t[p] = QChar(char16_t(t[p].unicode() + 1));
    }
    m_targetID = corvane::fourCharCodeFromString(t);
}

void TVKKeyset::writeTo(PlistValue& dict) const
{
    dict.insert(key::Name, PlistValue(m_name));
    dict.insert(key::Sig, PlistValue(corvane::stringFromFourCharCode(m_signature)));
    if (m_bundleID)
        dict.insert(key::AppBID, PlistValue(*m_bundleID));
    dict.insert(key::AppTID, PlistValue(corvane::stringFromFourCharCode(m_targetID)));
    if (!m_icon.isEmpty())
        dict.insert(key::AppIcon, PlistValue(m_icon));
    dict.insert(key::EMode, PlistValue(quint64(m_emulationMode)));
    dict.insert(key::OneTchRcd, PlistValue(qint64(m_oneTouchRecord ? 1 : 0)));
    dict.insert(key::ConViaEnet, PlistValue(qint64(m_connectViaEthernet ? 1 : 0)));
    dict.insert(key::EnetPrt, PlistValue(quint64(m_ethernetPort)));
    dict.insert(key::Lock, PlistValue(m_locked));
    const int count = std::min(numLayers(), int(m_layers.size()));
    PlistValue layers = PlistValue::makeArray(count);
    for (int i = 0; i < count; ++i) {
        PlistValue layer = PlistValue::makeDict(4);
        m_layers[std::size_t(i)]->writeTo(layer);
        layers.append(std::move(layer));
    }
    dict.insert(key::Layers, std::move(layers));
}

void TVKKeyset::printMappings() const
{
    // The listing prints an absent text as "(null)", as the log has always shown it.
    auto text = [](const QString& value) {
        return value.isNull() ? QStringLiteral("(null)") : value;
    };
    corvane::log(QStringLiteral("\n%1\n").arg(text(m_name)));
    const TVKLayer* layer = m_layers.empty() ? nullptr : m_layers.front().get();
    if (!layer)
        return;
    for (const auto& group : layer->groups()) {
        for (const auto& control : group) {
            QString mapping;
            if (!control->userName().isEmpty()) {
                mapping = control->userName();
            } else if (const TVKAction* action = control->action()) {
                mapping = text(action->actionDescriptor());
            }
            corvane::log(QStringLiteral("%1\t%2").arg(text(control->name()), mapping));
        }
    }
}

int TVKKeyset::readLayersFromArchive(const PlistValue& archive)
{
    const PlistValue& layers = archive.value(key::Layers);
    const qsizetype archived = layers.isArray() ? layers.size() : 0;
    // A keyset has exactly the surface's layers; more in an archive are not read.
    const int count = int(std::min<qsizetype>(archived, numLayers()));
    if (archived > count && corvane::ArchiveRepairLog::isActive())
        corvane::ArchiveRepairLog::record(
            {m_name, count, -1, false, -1,
             QStringLiteral("%1 layers beyond the surface's %2 ignored")
                 .arg(archived - count)
                 .arg(count)});
    for (int i = 0; i < count; ++i) {
        auto layer = createLayerFromArchive(layers.at(i), i);
        if (!layer)
            continue;
        if (std::size_t(i) < m_layers.size())
            m_layers[std::size_t(i)] = std::move(layer);
        else
            m_layers.push_back(std::move(layer));
    }
    return count;
}
