#pragma once

#include "core/FourCharCode.h"
#include "core/PlistValue.h"
#include "model/TVKSelection.h"

#include <QByteArray>
#include <QString>
#include <memory>
#include <optional>
#include <vector>

class TVKAction;
class TVKControl;
class TVKKeyset;
class TVKLayer;

// The root of the configuration: the ordered keyset list, the current selection, the surface's
// Ethernet address and port, the one-touch-record default and the owner keyset of the surface.
//
// Exactly one instance is live at a time and reachable through defaultModelData(); whoever makes
// the model data owns it (std::unique_ptr) and the accessor forgets it when it is destroyed.
// Every constructor makes the new object the live one.
//
// Operations that take a keyset out of the list hand it back, so that an undo step can keep it.
class TVKModelData
{
public:
    // init
    TVKModelData();
    // initWithArchive: for the base: its factories make no keysets, so the list stays empty.
    explicit TVKModelData(const corvane::PlistValue& archive);
    virtual ~TVKModelData();

    TVKModelData(const TVKModelData&) = delete;
    TVKModelData& operator=(const TVKModelData&) = delete;

    // The most keysets a configuration holds: one per application, far above real use, and
    // far below the memory a few bytes of archive could otherwise ask for (every keyset holds
    // four full layers whatever its archive says). Readers drop the keysets beyond it.
    static constexpr int kMaxKeysets = 256;
    // Why an archived configuration goes beyond what a configuration may hold (the reader would
    // drop what is beyond); a null text when it does not.
    static QString archiveLimitExceeded(const corvane::PlistValue& archive);

    static TVKModelData* defaultModelData();
    static void setDefaultModelData(TVKModelData* modelData);

    int numberOfKeysets() const { return int(m_keysets.size()); }
    // An index outside the list is a caller's error: asserted, and nullptr rather than a read
    // past the list.
    TVKKeyset* keysetAtIndex(int index) const;
    const std::vector<std::unique_ptr<TVKKeyset>>& keysets() const { return m_keysets; }

    TVKKeyset* selectedKeyset() const;
    TVKLayer* selectedLayer() const;
    TVKControl* selectedControl() const;
    TVKControl* controlForKeyset(int keyset, int layer, int group, int index) const;
    TVKControl* selectedDisplay() const;
    TVKControl* displayForKeyset(int keyset, int layer, int group, int index) const;
    TVKAction* selectedControlAction() const;
    // The control stores a copy.
    void setSelectedControlAction(const TVKAction* action);
    void setSelectedControlUserName(const QString& userName);
    // setAction:forControlInKeyset:layer:group:atIndex:
    void setAction(const TVKAction* action, int keyset, int layer, int group, int index);
    // selectedDisplay:group: — the display index, then the display group index.
    void selectedDisplay(int& display, int& group) const;
    void setSelectedDisplay(int display, int group);

    // Lookups: the first match in list order, −1 when nothing matches.
    int indexOfKeysetWithSignature(corvane::FourCharCode signature) const;
    int indexOfKeysetWithBundleID(const QString& bundleID) const;
    // The keyset an imported one stands for: by bundle identifier when it has no signature
    // (an empty identifier matches an empty one; none matches nothing), else by signature.
    int indexOfMatchingKeyset(const TVKKeyset& keyset) const;
    // Only keysets without a real signature are found by name.
    int indexOfKeysetWithName(const QString& name) const;
    int appPortInUse(quint32 port) const;

    void addKeyset(std::unique_ptr<TVKKeyset> keyset);
    void addKeysetWithName(const QString& name, corvane::FourCharCode signature);
    void addKeysetWithName(const QString& name, corvane::FourCharCode signature,
                           const QString& bundleID);
    void addKeysetWithName(const QString& name, corvane::FourCharCode signature,
                           const QString& bundleID, const QByteArray& icon);
    void addKeysetWithName(const QString& name, corvane::FourCharCode signature,
                           const QByteArray& icon);
    // Stores the keyset AT the index (clamped to the count): it replaces the keyset standing
    // there and appends only at the count. Undoing a keyset deletion relies on this. Returns the
    // keyset it replaced.
    std::unique_ptr<TVKKeyset> insertKeyset(std::unique_ptr<TVKKeyset> keyset, int index);
    // Returns the keyset it replaced; with an index outside the list nothing changes and the
    // given keyset comes back.
    std::unique_ptr<TVKKeyset> replaceKeysetAtIndex(int index, std::unique_ptr<TVKKeyset> keyset);
    // Replaces the keyset that an imported one stands for (by bundle identifier when it has no
    // signature, else by signature). Returns the replaced keyset, or the given one when none
    // matched (nothing is added then).
    std::unique_ptr<TVKKeyset> ReplaceMatchingKeyset(std::unique_ptr<TVKKeyset> keyset);
    // Clears the owner when this keyset is the owner; the selection is not adjusted.
    std::unique_ptr<TVKKeyset> deleteKeysetAtIndex(int index);
    std::unique_ptr<TVKKeyset> deleteCurrentKeyset();
    // setHasOwnerKeyset:BundleId:Signature:
    void setHasOwnerKeyset(bool hasOwner, const std::optional<QString>& bundleID,
                           corvane::FourCharCode signature);

    // Factories; the base logs that a subclass must provide them and makes nothing.
    virtual std::unique_ptr<TVKKeyset> createKeysetWithName(const QString& name,
                                                            corvane::FourCharCode signature);
    virtual std::unique_ptr<TVKKeyset> createKeysetWithName(const QString& name,
                                                            corvane::FourCharCode signature,
                                                            const QString& bundleID);
    virtual std::unique_ptr<TVKKeyset> createKeysetWithPropertiesOfKeyset(const TVKKeyset& source);
    virtual std::unique_ptr<TVKKeyset> createKeysetFromArchive(const corvane::PlistValue& dict);

    virtual void writeTo(corvane::PlistValue& dict) const;

    bool controlSurfaceHasOwnerKeyset() const { return m_controlSurfaceHasOwnerKeyset; }
    void setControlSurfaceHasOwnerKeyset(bool has) { m_controlSurfaceHasOwnerKeyset = has; }
    bool oneTouchRecordDefault() const { return m_oneTouchRecordDefault; }
    void setOneTouchRecordDefault(bool on) { m_oneTouchRecordDefault = on; }
    corvane::FourCharCode ownerKeysetSignature() const { return m_ownerKeysetSignature; }
    void setOwnerKeysetSignature(corvane::FourCharCode signature)
    {
        m_ownerKeysetSignature = signature;
    }
    // A null QString when there is none.
    QString ownerKeysetBundleID() const { return m_ownerKeysetBundleID.value_or(QString()); }
    bool hasOwnerKeysetBundleID() const { return m_ownerKeysetBundleID.has_value(); }
    void setOwnerKeysetBundleID(std::optional<QString> bundleID)
    {
        m_ownerKeysetBundleID = std::move(bundleID);
    }
    uint ethernetPort() const { return m_ethernetPort; }
    void setEthernetPort(uint port) { m_ethernetPort = port; }
    const QString& ipAddress() const { return m_ipAddress; }
    void setIpAddress(const QString& address) { m_ipAddress = address; }

    // The one selection of the application. Stored as given: the keyset index is clamped only
    // by setSelectedKeysetIndex.
    const TVKSelection& selection() const { return m_selection; }
    void setSelection(const TVKSelection& selection) { m_selection = selection; }

    int selectedKeysetIndex() const { return m_selection.keyset; }
    // Clamped into the list: at or beyond the count (every negative index included) gives the
    // last keyset, and an empty list gives 0.
    void setSelectedKeysetIndex(int index);
    int selectedLayerIndex() const { return m_selection.layer; }
    void setSelectedLayerIndex(int index) { m_selection.layer = index; }
    int selectedGroupIndex() const { return m_selection.group; }
    void setSelectedGroupIndex(int index) { m_selection.group = index; }
    int selectedControlIndex() const { return m_selection.control; }
    void setSelectedControlIndex(int index) { m_selection.control = index; }
    int selectedDisplayGroupIndex() const { return m_selection.displayGroup; }
    void setSelectedDisplayGroupIndex(int index) { m_selection.displayGroup = index; }
    int selectedDisplayControlIndex() const { return m_selection.display; }
    void setSelectedDisplayControlIndex(int index) { m_selection.display = index; }

protected:
    // Reading steps shared by the archive constructors: the base keys and the keyset list.
    // Called from the subclass's constructor so that its keyset factory is the one used.
    void readFromArchive(const corvane::PlistValue& archive);
    std::vector<std::unique_ptr<TVKKeyset>> m_keysets;

private:
    void adopt(TVKKeyset& keyset);
    // The readable keysets of an archived list, in its order.
    std::vector<std::unique_ptr<TVKKeyset>> readKeysets(const corvane::PlistValue& keysets);

    std::optional<QString> m_ownerKeysetBundleID;
    QString m_ipAddress;
    corvane::FourCharCode m_ownerKeysetSignature = 0;
    uint m_ethernetPort = 23;
    TVKSelection m_selection;
    bool m_controlSurfaceHasOwnerKeyset = false;
    bool m_oneTouchRecordDefault = false;
};
