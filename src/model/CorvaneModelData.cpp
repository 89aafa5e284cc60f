#include "model/CorvaneModelData.h"

#include "core/StoredKeys.h"
#include "model/CorvaneKeyset.h"

namespace key = corvane::key;

using corvane::PlistValue;

CorvaneModelData::CorvaneModelData()
{
    setDefaultModelData(this);
    m_keysets.reserve(5);
    m_keysets.push_back(std::make_unique<CorvaneKeyset>(this));
}

CorvaneModelData::CorvaneModelData(const PlistValue& archive) : CorvaneModelData()
{
    readFromArchive(archive);
    setDefaultModelData(this);
    auto flag = [&archive](QStringView key, bool& field) {
        const PlistValue& value = archive.value(key);
        if (!value.isNull())
            field = value.toInteger(0) != 0;
    };
    flag(key::StandaloneTL, m_standaloneTL);
    flag(key::StandaloneTLW, m_standaloneTLW);
    flag(key::StandaloneTLW2, m_standaloneTLW2);
    flag(key::StandaloneNV, m_standaloneNV);
    flag(key::StandaloneDZ, m_standaloneDZ);
    const PlistValue& style = archive.value(key::HardwareStyle);
    if (!style.isNull())
        m_hardwareStyle = int(style.toInteger(m_hardwareStyle));
}

std::unique_ptr<TVKKeyset> CorvaneModelData::createKeysetWithName(const QString& name,
                                                                  corvane::FourCharCode signature)
{
    return std::make_unique<CorvaneKeyset>(name, signature, this);
}

std::unique_ptr<TVKKeyset> CorvaneModelData::createKeysetWithName(const QString& name,
                                                                  corvane::FourCharCode signature,
                                                                  const QString& bundleID)
{
    return std::make_unique<CorvaneKeyset>(name, signature, std::optional<QString>(bundleID), this);
}

std::unique_ptr<TVKKeyset>
CorvaneModelData::createKeysetWithPropertiesOfKeyset(const TVKKeyset& source)
{
    // Fresh layers and a target ID of its own first, then the source's settings; the lock and
    // the controls are not copied.
    auto keyset = std::make_unique<CorvaneKeyset>(source.name(), source.signature(), this);
    keyset->setBundleID(source.hasBundleID() ? std::optional<QString>(source.bundleID())
                                             : std::nullopt);
    keyset->setTargetID(source.targetID());
    keyset->setIcon(source.icon());
    keyset->setEmulationMode(source.emulationMode());
    keyset->setOneTouchRecord(source.oneTouchRecord());
    keyset->setConnectViaEthernet(source.connectViaEthernet());
    keyset->setEthernetPort(source.ethernetPort());
    if (const auto* corvane = dynamic_cast<const CorvaneKeyset*>(&source))
        keyset->setReverseRBButtons(corvane->reverseRBButtons());
    return keyset;
}

std::unique_ptr<TVKKeyset> CorvaneModelData::createKeysetFromArchive(const PlistValue& dict)
{
    return std::make_unique<CorvaneKeyset>(dict, this);
}

void CorvaneModelData::writeTo(PlistValue& dict) const
{
    TVKModelData::writeTo(dict);
    auto flag = [&dict](const QString& key, bool on) {
        dict.insert(key, PlistValue(qint64(on ? 1 : 0)));
    };
    flag(key::StandaloneTL, m_standaloneTL);
    flag(key::StandaloneTLW, m_standaloneTLW);
    flag(key::StandaloneTLW2, m_standaloneTLW2);
    flag(key::StandaloneNV, m_standaloneNV);
    flag(key::StandaloneDZ, m_standaloneDZ);
    dict.insert(key::HardwareStyle, PlistValue(qint64(m_hardwareStyle)));
}

CorvaneKeyset* CorvaneModelData::selectedCorvaneKeyset() const
{
    return dynamic_cast<CorvaneKeyset*>(selectedKeyset());
}

void CorvaneModelData::createCorvaneNVGroupNamed(const QString& name)
{
    if (CorvaneKeyset* keyset = selectedCorvaneKeyset())
        keyset->createCorvaneNVGroupNamed(name);
}

QString CorvaneModelData::nameOfGroupWithID(int group) const
{
    const CorvaneKeyset* keyset = selectedCorvaneKeyset();
    return keyset ? keyset->nameOfGroupWithID(group) : QStringLiteral("Unknown!");
}

int CorvaneModelData::numCorvaneNVGroups() const
{
    const CorvaneKeyset* keyset = selectedCorvaneKeyset();
    return keyset ? keyset->numCorvaneNVGroups() : 0;
}

void CorvaneModelData::addButtonID(int button, int group)
{
    if (CorvaneKeyset* keyset = selectedCorvaneKeyset())
        keyset->addButtonID(button, group);
}

void CorvaneModelData::deleteButtonID(int button, int group)
{
    if (CorvaneKeyset* keyset = selectedCorvaneKeyset())
        keyset->deleteButtonID(button, group);
}

bool CorvaneModelData::buttonID(int button, int& group) const
{
    const CorvaneKeyset* keyset = selectedCorvaneKeyset();
    return keyset && keyset->buttonID(button, group);
}

void CorvaneModelData::deleteCorvaneNVGroup(int group)
{
    if (CorvaneKeyset* keyset = selectedCorvaneKeyset())
        keyset->deleteCorvaneNVGroup(group);
}

const PlistValue* CorvaneModelData::corvaneNVGroupWithID(int group) const
{
    const CorvaneKeyset* keyset = selectedCorvaneKeyset();
    return keyset ? keyset->corvaneNVGroupWithID(group) : nullptr;
}

int CorvaneModelData::corvaneNVGroupForButtonWithID(int button) const
{
    const CorvaneKeyset* keyset = selectedCorvaneKeyset();
    return keyset ? keyset->corvaneNVGroupForButtonWithID(button) : -1;
}

int CorvaneModelData::colorForCorvaneNVGroup(const PlistValue& group) const
{
    const CorvaneKeyset* keyset = selectedCorvaneKeyset();
    return keyset ? keyset->colorForCorvaneNVGroup(group) : 0;
}

int CorvaneModelData::colorForCorvaneNVGroupWithID(int group) const
{
    const CorvaneKeyset* keyset = selectedCorvaneKeyset();
    return keyset ? keyset->colorForCorvaneNVGroupWithID(group) : 0;
}
