#include "model/TVKModelData.h"

#include "actions/TVKAction.h"
#include "core/Log.h"
#include "core/StoredKeys.h"
#include "model/ArchiveReading.h"
#include "model/ArchiveRepairLog.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"

#include <cassert>
#include <vector>

namespace key = corvane::key;

using corvane::PlistValue;

namespace {

TVKModelData* g_defaultModelData = nullptr;

} // namespace

TVKModelData::TVKModelData()
{
    setDefaultModelData(this);
    setSelectedKeysetIndex(0);
    setSelectedLayerIndex(0);
    setSelectedGroupIndex(0);
    setSelectedControlIndex(0);
    m_ethernetPort = 23;
    m_ipAddress = QStringLiteral("192.168.1.250");
}

TVKModelData::TVKModelData(const PlistValue& archive) : TVKModelData()
{
    readFromArchive(archive);
}

TVKModelData::~TVKModelData()
{
    if (g_defaultModelData == this)
        g_defaultModelData = nullptr;
}

TVKModelData* TVKModelData::defaultModelData()
{
    return g_defaultModelData;
}

void TVKModelData::setDefaultModelData(TVKModelData* modelData)
{
    g_defaultModelData = modelData;
}

TVKKeyset* TVKModelData::keysetAtIndex(int index) const
{
    assert(index >= 0 && std::size_t(index) < m_keysets.size());
    if (index < 0 || std::size_t(index) >= m_keysets.size())
        return nullptr;
    return m_keysets[std::size_t(index)].get();
}

TVKKeyset* TVKModelData::selectedKeyset() const
{
    // The selection may point past a list that just shrank; that is no caller's error here.
    if (m_selection.keyset < 0 || std::size_t(m_selection.keyset) >= m_keysets.size())
        return nullptr;
    return m_keysets[std::size_t(m_selection.keyset)].get();
}

TVKLayer* TVKModelData::selectedLayer() const
{
    const TVKKeyset* keyset = selectedKeyset();
    return keyset ? keyset->layerAtIndex(m_selection.layer) : nullptr;
}

TVKControl* TVKModelData::selectedControl() const
{
    return controlForKeyset(m_selection.keyset, m_selection.layer, m_selection.group,
                            m_selection.control);
}

TVKControl* TVKModelData::controlForKeyset(int keyset, int layer, int group, int index) const
{
    if (keyset < 0 || std::size_t(keyset) >= m_keysets.size())
        return nullptr;
    return m_keysets[std::size_t(keyset)]->controlForLayer(layer, group, index);
}

TVKControl* TVKModelData::selectedDisplay() const
{
    return displayForKeyset(m_selection.keyset, m_selection.layer, m_selection.displayGroup,
                            m_selection.display);
}

TVKControl* TVKModelData::displayForKeyset(int keyset, int layer, int group, int index) const
{
    if (keyset < 0 || std::size_t(keyset) >= m_keysets.size())
        return nullptr;
    return m_keysets[std::size_t(keyset)]->displayForLayer(layer, group, index);
}

TVKAction* TVKModelData::selectedControlAction() const
{
    const TVKControl* control = selectedControl();
    return control ? control->action() : nullptr;
}

void TVKModelData::setSelectedControlAction(const TVKAction* action)
{
    if (TVKControl* control = selectedControl())
        control->setAction(action);
}

void TVKModelData::setSelectedControlUserName(const QString& userName)
{
    if (TVKControl* control = selectedControl())
        control->setUserName(userName);
}

void TVKModelData::setAction(const TVKAction* action, int keyset, int layer, int group, int index)
{
    if (TVKControl* control = controlForKeyset(keyset, layer, group, index))
        control->setAction(action);
}

void TVKModelData::selectedDisplay(int& display, int& group) const
{
    display = m_selection.display;
    group = m_selection.displayGroup;
}

void TVKModelData::setSelectedDisplay(int display, int group)
{
    m_selection.display = display;
    m_selection.displayGroup = group;
}

void TVKModelData::setSelectedKeysetIndex(int index)
{
    const int count = numberOfKeysets();
    // Compared as unsigned numbers: a negative request is "beyond the end" too.
    int result = index;
    if (unsigned(index) >= unsigned(count))
        result = count - 1;
    if (result < 0)
        result = 0;
    m_selection.keyset = result;
}

int TVKModelData::indexOfKeysetWithSignature(corvane::FourCharCode signature) const
{
    for (std::size_t i = 0; i < m_keysets.size(); ++i) {
        if (m_keysets[i]->signature() == signature)
            return int(i);
    }
    return -1;
}

int TVKModelData::indexOfKeysetWithBundleID(const QString& bundleID) const
{
    for (std::size_t i = 0; i < m_keysets.size(); ++i) {
        if (m_keysets[i]->hasBundleID() && m_keysets[i]->bundleID() == bundleID)
            return int(i);
    }
    return -1;
}

int TVKModelData::indexOfMatchingKeyset(const TVKKeyset& keyset) const
{
    if (!corvane::isMissingSignature(keyset.signature()))
        return indexOfKeysetWithSignature(keyset.signature());
    return keyset.hasBundleID() ? indexOfKeysetWithBundleID(keyset.bundleID()) : -1;
}

int TVKModelData::indexOfKeysetWithName(const QString& name) const
{
    // A keyset with a real signature is found by its signature only.
    for (std::size_t i = 0; i < m_keysets.size(); ++i) {
        if (corvane::isMissingSignature(m_keysets[i]->signature()) && m_keysets[i]->name() == name)
            return int(i);
    }
    return -1;
}

int TVKModelData::appPortInUse(quint32 port) const
{
    for (std::size_t i = 0; i < m_keysets.size(); ++i) {
        if (m_keysets[i]->connectViaEthernet() && m_keysets[i]->ethernetPort() == port)
            return int(i);
    }
    return -1;
}

void TVKModelData::adopt(TVKKeyset& keyset)
{
    // A keyset made for another model data (a tool's, a test's) must not keep pointing at it.
    if (keyset.owner() != this)
        keyset.setOwner(this);
}

void TVKModelData::addKeyset(std::unique_ptr<TVKKeyset> keyset)
{
    if (!keyset)
        return;
    adopt(*keyset);
    m_keysets.push_back(std::move(keyset));
}

void TVKModelData::addKeysetWithName(const QString& name, corvane::FourCharCode signature)
{
    addKeyset(createKeysetWithName(name, signature));
}

void TVKModelData::addKeysetWithName(const QString& name, corvane::FourCharCode signature,
                                     const QString& bundleID)
{
    addKeyset(createKeysetWithName(name, signature, bundleID));
}

void TVKModelData::addKeysetWithName(const QString& name, corvane::FourCharCode signature,
                                     const QString& bundleID, const QByteArray& icon)
{
    auto keyset = createKeysetWithName(name, signature, bundleID);
    if (keyset)
        keyset->setIcon(icon);
    addKeyset(std::move(keyset));
}

void TVKModelData::addKeysetWithName(const QString& name, corvane::FourCharCode signature,
                                     const QByteArray& icon)
{
    auto keyset = createKeysetWithName(name, signature);
    if (keyset)
        keyset->setIcon(icon);
    addKeyset(std::move(keyset));
}

std::unique_ptr<TVKKeyset> TVKModelData::insertKeyset(std::unique_ptr<TVKKeyset> keyset, int index)
{
    if (!keyset)
        return nullptr;
    const std::size_t count = m_keysets.size();
    // Clamped as an unsigned index, so a negative one appends.
    std::size_t at = unsigned(index);
    if (at > count)
        at = count;
    adopt(*keyset);
    if (at == count) {
        m_keysets.push_back(std::move(keyset));
        return nullptr;
    }
    std::swap(m_keysets[at], keyset);
    return keyset;
}

std::unique_ptr<TVKKeyset> TVKModelData::replaceKeysetAtIndex(int index,
                                                              std::unique_ptr<TVKKeyset> keyset)
{
    if (index < 0 || std::size_t(index) >= m_keysets.size() || !keyset)
        return keyset;
    if (m_keysets[std::size_t(index)].get() == keyset.get()) {
        // The very same keyset already stands there; it must not be owned twice.
        (void)keyset.release();
        return nullptr;
    }
    adopt(*keyset);
    std::swap(m_keysets[std::size_t(index)], keyset);
    return keyset;
}

std::unique_ptr<TVKKeyset> TVKModelData::ReplaceMatchingKeyset(std::unique_ptr<TVKKeyset> keyset)
{
    if (!keyset)
        return nullptr;
    const int index = indexOfMatchingKeyset(*keyset);
    if (index < 0)
        return keyset;
    return replaceKeysetAtIndex(index, std::move(keyset));
}

std::unique_ptr<TVKKeyset> TVKModelData::deleteKeysetAtIndex(int index)
{
    assert(index >= 0 && std::size_t(index) < m_keysets.size());
    if (index < 0 || std::size_t(index) >= m_keysets.size())
        return nullptr;
    const TVKKeyset& keyset = *m_keysets[std::size_t(index)];
    if (m_controlSurfaceHasOwnerKeyset) {
        if (keyset.hasBundleID() && !keyset.bundleID().isEmpty()) {
            // Matched by bundle identifier only, even when the owner has none recorded.
            if (m_ownerKeysetBundleID && !m_ownerKeysetBundleID->isEmpty() &&
                *m_ownerKeysetBundleID == keyset.bundleID())
                setHasOwnerKeyset(false, std::nullopt, 0);
        } else if (!corvane::isMissingSignature(m_ownerKeysetSignature) &&
                   m_ownerKeysetSignature == keyset.signature()) {
            setHasOwnerKeyset(false, std::nullopt, 0);
        }
    }
    auto removed = std::move(m_keysets[std::size_t(index)]);
    m_keysets.erase(m_keysets.begin() + index);
    return removed;
}

std::unique_ptr<TVKKeyset> TVKModelData::deleteCurrentKeyset()
{
    return deleteKeysetAtIndex(m_selection.keyset);
}

void TVKModelData::setHasOwnerKeyset(bool hasOwner, const std::optional<QString>& bundleID,
                                     corvane::FourCharCode signature)
{
    m_controlSurfaceHasOwnerKeyset = hasOwner;
    if (hasOwner) {
        m_ownerKeysetBundleID = bundleID;
        m_ownerKeysetSignature = signature;
    } else {
        m_ownerKeysetBundleID.reset();
        m_ownerKeysetSignature = 0;
    }
}

std::unique_ptr<TVKKeyset> TVKModelData::createKeysetWithName(const QString& /*name*/,
                                                              corvane::FourCharCode /*signature*/)
{
    corvane::log(
        QStringLiteral("TVKModelData subclasses must override createKeysetWithName:andSignature:"));
    return nullptr;
}

std::unique_ptr<TVKKeyset> TVKModelData::createKeysetWithName(const QString& /*name*/,
                                                              corvane::FourCharCode /*signature*/,
                                                              const QString& /*bundleID*/)
{
    corvane::log(QStringLiteral(
        "TVKModelData subclasses must override createKeysetWithName:signature:andBundleID:"));
    return nullptr;
}

std::unique_ptr<TVKKeyset>
TVKModelData::createKeysetWithPropertiesOfKeyset(const TVKKeyset& /*source*/)
{
    corvane::log(QStringLiteral(
        "TVKModelData subclasses must override createKeysetWithPropertiesOfKeyset:"));
    return nullptr;
}

std::unique_ptr<TVKKeyset> TVKModelData::createKeysetFromArchive(const PlistValue& /*dict*/)
{
    corvane::log(QStringLiteral("TVKModelData subclasses must override createKeysetFromArchive"));
    return nullptr;
}

void TVKModelData::writeTo(PlistValue& dict) const
{
    dict.insert(key::OneTchDflt, PlistValue(qint64(m_oneTouchRecordDefault ? 1 : 0)));
    dict.insert(key::IPAdr, PlistValue(m_ipAddress));
    dict.insert(key::EnetPrt, PlistValue(quint64(quint32(m_ethernetPort))));
    dict.insert(key::HasOwnerKS, PlistValue(m_controlSurfaceHasOwnerKeyset));
    if (m_controlSurfaceHasOwnerKeyset) {
        if (m_ownerKeysetBundleID && !m_ownerKeysetBundleID->isEmpty())
            dict.insert(key::OwnKSBID, PlistValue(*m_ownerKeysetBundleID));
        dict.insert(key::OwnKSSig,
                    PlistValue(corvane::stringFromFourCharCode(m_ownerKeysetSignature)));
    }
    PlistValue keysets = PlistValue::makeArray(qsizetype(m_keysets.size()));
    for (const auto& keyset : m_keysets) {
        PlistValue keysetDict = PlistValue::makeDict(6);
        keyset->writeTo(keysetDict);
        keysets.append(std::move(keysetDict));
    }
    dict.insert(key::Keysets, std::move(keysets));
}

void TVKModelData::readFromArchive(const PlistValue& archive)
{
    m_oneTouchRecordDefault = corvane::archivedFlag(archive.value(key::OneTchDflt), false);
    const PlistValue& address = archive.value(key::IPAdr);
    if (address.isString())
        m_ipAddress = address.toString();
    const PlistValue& port = archive.value(key::EnetPrt);
    if (!port.isNull())
        m_ethernetPort = quint32(port.toUnsigned(m_ethernetPort));

    m_controlSurfaceHasOwnerKeyset = false;
    const PlistValue& hasOwner = archive.value(key::HasOwnerKS);
    if (!hasOwner.isNull())
        m_controlSurfaceHasOwnerKeyset = corvane::archivedFlag(hasOwner, false);
    if (m_controlSurfaceHasOwnerKeyset) {
        m_ownerKeysetBundleID = corvane::archivedOptionalText(archive.value(key::OwnKSBID));
        m_ownerKeysetSignature = corvane::archivedCode(archive.value(key::OwnKSSig));
    } else {
        m_ownerKeysetBundleID.reset();
        m_ownerKeysetSignature = 0;
    }

    // An archived list replaces the list made by init (the "Default" keyset goes); a missing or
    // empty one keeps it.
    const PlistValue& keysets = archive.value(key::Keysets);
    if (keysets.isArray() && !keysets.isEmpty()) {
        std::vector<std::unique_ptr<TVKKeyset>> list = readKeysets(keysets);
        // Nothing readable: the keyset init made stays, so that there is always one.
        if (!list.empty())
            m_keysets.clear();
        for (auto& keyset : list)
            addKeyset(std::move(keyset));
    }
}

QString TVKModelData::archiveLimitExceeded(const PlistValue& archive)
{
    const PlistValue& keysets = archive.value(key::Keysets);
    if (keysets.isArray() && keysets.size() > kMaxKeysets)
        return QStringLiteral("the configuration holds %1 keysets, more than the limit of %2")
            .arg(keysets.size())
            .arg(kMaxKeysets);
    return QString();
}

std::vector<std::unique_ptr<TVKKeyset>> TVKModelData::readKeysets(const PlistValue& keysets)
{
    std::vector<std::unique_ptr<TVKKeyset>> list;
    const qsizetype count = std::min<qsizetype>(keysets.size(), kMaxKeysets);
    if (keysets.size() > count)
        corvane::ArchiveRepairLog::record(
            {QString(), -1, -1, false, -1,
             QStringLiteral("keysets %1 to %2 beyond the limit of %3 dropped")
                 .arg(count)
                 .arg(keysets.size() - 1)
                 .arg(kMaxKeysets)});
    list.reserve(std::size_t(count));
    for (qsizetype i = 0; i < count; ++i) {
        const PlistValue& entry = keysets.at(i);
        // An entry that is no dictionary holds no keyset; read, it would become a nameless
        // keyset of fresh layers that the user never made.
        if (!entry.isDict()) {
            corvane::ArchiveRepairLog::record(
                {QString(), -1, -1, false, -1,
                 QStringLiteral("keyset entry %1 is no dictionary; dropped").arg(i)});
            continue;
        }
        if (std::unique_ptr<TVKKeyset> keyset = createKeysetFromArchive(entry))
            list.push_back(std::move(keyset));
    }
    return list;
}
