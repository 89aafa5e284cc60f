#pragma once

#include "core/FourCharCode.h"
#include "core/PlistValue.h"
#include "model/EmulationMode.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <memory>
#include <optional>
#include <vector>

class TVKControl;
class TVKLayer;
class TVKModelData;

// The whole surface configuration for one target application: name, signature, bundle
// identifier, target ID, icon, settings and four layers. The model data owns its keysets; a
// keyset owns its layers and keeps a non-owning link to the model data.
class TVKKeyset
{
public:
    // initWithName:signature:appID:andOwner: (the base makes no layers). A bundle identifier of
    // none (std::nullopt) is kept as none; the initialisers that take none store the empty text.
    TVKKeyset(const QString& name, corvane::FourCharCode signature, std::optional<QString> bundleID,
              TVKModelData* owner);
    virtual ~TVKKeyset();

    TVKKeyset(const TVKKeyset&) = delete;
    TVKKeyset& operator=(const TVKKeyset&) = delete;

    // Every target ID made in this run, as four-character texts, in order of making. A deleted
    // keyset's target ID stays reserved for the rest of the run.
    static const QStringList& targetIDs();
    // Forgets the target IDs made so far (tests start every case from an empty list).
    static void resetTargetIDs();

    int numberOfLayers() const { return 4; }
    virtual void createLayers();
    virtual std::unique_ptr<TVKLayer> createLayerFromArchive(const corvane::PlistValue& dict,
                                                             int index);
    // Clamped: an index at or above the layer count gives the last layer, a negative one the
    // first. nullptr only while the keyset has no layers.
    TVKLayer* layerAtIndex(int index) const;
    TVKControl* controlForLayer(int layer, int group, int index) const;
    TVKControl* displayForLayer(int layer, int group, int index) const;
    const std::vector<std::unique_ptr<TVKLayer>>& layers() const { return m_layers; }

    void setAllControlsToActionMode(int mode);
    virtual std::unique_ptr<TVKKeyset> copyWithoutEmulation() const;
    bool copyToWithoutEmulation(TVKKeyset& target) const;

    void createTargetID();
    virtual void writeTo(corvane::PlistValue& dict) const;
    void printMappings() const;

    bool oneTouchRecord() const { return m_oneTouchRecord; }
    void setOneTouchRecord(bool on) { m_oneTouchRecord = on; }
    bool connectViaEthernet() const { return m_connectViaEthernet; }
    void setConnectViaEthernet(bool on) { m_connectViaEthernet = on; }
    bool locked() const { return m_locked; }
    void setLocked(bool locked) { m_locked = locked; }
    corvane::FourCharCode signature() const { return m_signature; }
    void setSignature(corvane::FourCharCode signature) { m_signature = signature; }
    corvane::FourCharCode targetID() const { return m_targetID; }
    void setTargetID(corvane::FourCharCode targetID) { m_targetID = targetID; }
    TVKModelData* owner() const { return m_owner; }
    void setOwner(TVKModelData* owner);
    const QString& name() const { return m_name; }
    void setName(const QString& name) { m_name = name; }
    // The bundle identifier; a null QString when there is none.
    QString bundleID() const { return m_bundleID.value_or(QString()); }
    bool hasBundleID() const { return m_bundleID.has_value(); }
    void setBundleID(std::optional<QString> bundleID) { m_bundleID = std::move(bundleID); }
    // The application's icon as encoded image bytes (PNG); empty when there is none. Decoding
    // is the views' business.
    const QByteArray& icon() const { return m_icon; }
    void setIcon(const QByteArray& icon) { m_icon = icon; }
    corvane::EmulationMode emulationMode() const { return m_emulationMode; }
    void setEmulationMode(corvane::EmulationMode mode) { m_emulationMode = mode; }
    uint ethernetPort() const { return m_ethernetPort; }
    void setEthernetPort(uint port) { m_ethernetPort = port; }

protected:
    // initFromArchive:withOwner: for the base: the name, signature and bundle identifier, then
    // every keyset key except the layers. The subclass reads the layers in its own constructor.
    TVKKeyset(const corvane::PlistValue& archive, TVKModelData* owner);
    // The archived layers by index, each replacing whatever stands there; reports how many.
    int readLayersFromArchive(const corvane::PlistValue& archive);
    std::vector<std::unique_ptr<TVKLayer>> m_layers;

private:
    QString m_name;
    std::optional<QString> m_bundleID;
    QByteArray m_icon;
    TVKModelData* m_owner = nullptr;
    corvane::FourCharCode m_signature = 0;
    corvane::FourCharCode m_targetID = 0;
    corvane::EmulationMode m_emulationMode = corvane::EmulationMode::None;
    uint m_ethernetPort = 49152;
    bool m_oneTouchRecord = false;
    bool m_connectViaEthernet = false;
    bool m_locked = false;
};
