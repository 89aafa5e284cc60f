#pragma once

#include "app/TVKController.h"

#include <QStringList>
#include <functional>

class CorvaneMessenger;
class CorvaneModelData;

// The Corvane surfaces' controller: makes the family's model, messenger and surface constants,
// and adds the hardware finish, the standalone expanders (one at a time, each in its own
// window), the NV expander's group menus and the reversed R and B buttons.
class CorvaneController : public TVKController
{
    Q_OBJECT

public:
    CorvaneController();
    ~CorvaneController() override;

    void awakeFromNib() override;
    void windowDidBecomeKey(TVKWindow window) override;
    void handleMainWindowChange(TVKWindow window) override;

    std::unique_ptr<TVK_PrivateMessenger> makeMessenger() override;
    std::unique_ptr<TVKModelData> makeModelData() override;
    std::unique_ptr<TVKModelData>
    makeModelDataWithArchive(const corvane::PlistValue& archive) override;
    TVKInstallationNames controllerName() override;
    std::unique_ptr<TVKKeyset> makeKeysetFromArchive(const corvane::PlistValue& archive) override;
    QString keysetFileType() const override;
    void setOpenStatesForPeripheralWindows() override {}
    void saveOpenStatesForPeripheralWindows() override {}
    void getGlobalDefaults() override;
    void saveGlobalDefaults() override;
    QString inspectorNibName() const override;
    bool needsSetup() const override { return true; }
    bool installPlugin() const override { return false; }

    CorvaneModelData* corvaneModelData() const;
    CorvaneMessenger* corvaneMessenger() const;

    // The finish: 0 midnight, 1 silver.
    void setHardwareGraphics(qint64 style);
    const QStringList& hardwareImages() const { return m_hardwareImages; }
    void reverseRBButtons();
    void showExpander();
    void showTLW();
    void showTLW2();
    void showNV();
    // A radio control's value packs the control (low 8 bits) and the group.
    void radioController(qint64 value);
    void handleTVKDisplay(qint64 group, qint64 display) override;
    void handleCorvaneNVMenuItems(QAction* item);

    // The NV expander's three group menus: add the selection to a group, delete one, select one.
    void updateCorvaneNVGroupMenus();
    const std::vector<QAction*>& addToGroupMenu() const { return m_addToGroupMenu; }
    const std::vector<QAction*>& deleteGroupMenu() const { return m_deleteGroupMenu; }
    const std::vector<QAction*>& selectGroupMenu() const { return m_selectGroupMenu; }
    // A change of the selected keyset's NV button groups (the NV window's commands), made here so
    // that it reaches the service and the recovery journal: "TUNV" with the groups, then the
    // keyset itself ("TUpK"), which the journal keeps. Nothing changes in a locked keyset.
    void changeCorvaneNVGroups(const std::function<void(CorvaneModelData&)>& change);
    void handleAddToGroupMenu(QAction* item);
    void handleDeleteGroupMenu(QAction* item);
    void handleSelectGroupMenu(QAction* item);
    bool corvaneNVMenuActive() const { return m_corvaneNVMenuActive; }

    bool validateMenuItem(QAction* item) override;
    // Where the user finds the preference sheet, as the menus read: "Surface › Preferences…".
    static QString preferencesMenuPath();
    // Why the window of a unit used only without the RS cannot be opened now.
    static QString standaloneWindowReason(const QString& unit);
    void perform(QAction* item) override;

    void setupPreferencePanel() override;
    bool validatePreferences() override;
    void collectPreferences() override;
    // Each box can be changed only while none of the other three is on.
    void handleStandaloneCheckBoxEnablingForTL(bool tl, bool tlw, bool tlw2, bool nv);
    void handleStandaloneTLCheckBox(bool on);
    void handleStandaloneTLWCheckBox(bool on);
    void handleStandaloneTLW2CheckBox(bool on);
    void handleStandaloneNVCheckBox(bool on);
    void handleMultipleTLWCheckBox(bool) {}

private:
    static bool explainExpanderItem(QAction* item, bool enabled, const QString& reason);
    void reapplyStandaloneEnabling();

    QStringList m_hardwareImages;
    std::vector<QAction*> m_addToGroupMenu;
    std::vector<QAction*> m_deleteGroupMenu;
    std::vector<QAction*> m_selectGroupMenu;
    bool m_windowAlreadyBecameKey = false;
    bool m_corvaneNVMenuActive = false;
};
