#pragma once

#include "app/TVKMenuCommand.h"
#include "app/TVKSheetFields.h"
#include "app/TVKUndoManager.h"
#include "app/TVKViewInterfaces.h"
#include "core/NotificationCenter.h"
#include "core/Notifications.h"
#include "core/PlistValue.h"
#include "core/TVKUserDefaults.h"
#include "model/ControlProperties.h"
#include "model/TVKSelection.h"
#include "service/MessageFrame.h"
#include "service/TVKMessengerDelegate.h"

#include <QIcon>
#include <QImage>
#include <QObject>
#include <QString>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

class QAction;
class QTimer;
namespace corvane {
struct PlistReadResult;
}
class TVKAction;
class TVKControl;
class TVKKeyset;
class TVKLayer;
class TVKModelData;
class TVKRecoveryJournal;
class TVK_Constant_Server;
class TVK_PrivateMessenger;

// What the connection indicator tells apart.
enum class TVKServiceState
{
    SurfaceConnected,    // the service runs and has the surface
    SurfaceNotReachable, // the service runs but cannot reach the surface ("reconnect" asks it to)
    NoService,           // no service has its port open
    NotResponding        // a service holds its port but answers nothing: it is not waited on
};

// The application's one main controller: owns the model data, the messenger, the surface
// constants and the undo stack, moves the one selection (kept by the model data in its own
// numbering; the pictures' numbering is derived from it where it is read), applies every edit the
// views post (changing the model, registering the undo step, telling the service) and keeps the
// service's connection watched. It is abstract: what depends on the surface family is made by
// factory operations that CorvaneController overrides.
//
// The windows are reached through the interfaces of TVKViewInterfaces.h; the controller owns
// the menu items (QActions) and validates them itself, so that everything here runs without a
// widget. Its parts live in one file each: start-up and selection (this class's .cpp), the
// keyset commands, the control edits, the connection, the menus and the preferences.
class TVKController : public QObject, public TVKMessengerDelegate
{
    Q_OBJECT

public:
    using ActionList = std::vector<std::shared_ptr<const TVKAction>>;

    struct Views
    {
        TVKDialogs* dialogs = nullptr;
        TVKWindows* windows = nullptr;
        TVKSheets* sheets = nullptr;
        TVKInstallation* installation = nullptr;
    };

    // init: becomes the single instance.
    TVKController();
    ~TVKController() override;

    static TVKController* c();

    // Before awakeFromNib. Without views the controller acts as if every panel was cancelled
    // and no window was shown.
    void setViews(const Views& views);
    // The preference store to read at start-up and write on quit (default: the user's).
    void setStorePath(const QString& path) { m_storePath = path; }
    const QString& storePath() const { return m_storePath; }

    // --- Life -------------------------------------------------------------------------------
    virtual void awakeFromNib();
    void windowIsAwake();
    void applicationDidFinishLaunching();
    virtual void windowDidBecomeKey(TVKWindow window);
    virtual void handleMainWindowChange(TVKWindow window);
    // The application will terminate: writes everything, once.
    void handleTerminateMessage();
    void installIfNeeded();
    void triggerAXAlert();
    // Writes the model and the global settings to the store and flushes it.
    bool writeDataToDefaults();
    // Why the user's edits are not protected against a crash now (the recovery journal cannot be
    // written); empty while they are.
    const QString& editsUnprotected() const { return m_editsUnprotected; }

    bool isAwake() const { return m_amIAwake; }
    bool installDone() const { return m_installDone; }

    // --- Factories ------------------------------------------------------------------------
    virtual std::unique_ptr<TVK_PrivateMessenger> makeMessenger();
    virtual std::unique_ptr<TVKModelData> makeModelData();
    virtual std::unique_ptr<TVKModelData>
    makeModelDataWithArchive(const corvane::PlistValue& archive);
    // The eight installation names (out-parameters in one struct); the base gives none.
    virtual TVKInstallationNames controllerName();
    virtual std::unique_ptr<TVKKeyset> makeKeysetFromArchive(const corvane::PlistValue& archive);
    virtual QString keysetFileType() const;
    virtual void setOpenStatesForPeripheralWindows();
    virtual void saveOpenStatesForPeripheralWindows();
    virtual void openPeripheralWindow(qint64 tag);
    virtual void getGlobalDefaults();
    virtual void saveGlobalDefaults();
    virtual QString inspectorNibName() const;
    virtual bool needsSetup() const { return false; }
    virtual bool installPlugin() const { return false; }

    // --- State ----------------------------------------------------------------------------
    TVKModelData* modelData() const override { return m_modelData.get(); }
    TVK_PrivateMessenger* messenger() const { return m_messenger.get(); }
    TVK_Constant_Server* constantServer() const { return m_constantServer.get(); }
    TVKUndoManager& undoManager() { return m_undoManager; }
    corvane::TVKUserDefaults& defaults() { return *m_defaults; }

    // The one selection, the model data's (all zero without model data).
    TVKSelection selection() const;
    qint64 selectedKeyset() const { return selection().keyset; }
    qint64 selectedLayer() const { return selection().layer; }
    // The selected control in the pictures' numbering, derived from the selection.
    qint64 selectedGroup() const;
    qint64 selectedControl() const;
    qint64 modelDataGroupIndex() const { return selection().group; }
    qint64 modelDataControlIndex() const { return selection().control; }
    bool displaySelected() const { return selection().displaySelected; }
    bool capturing() const { return m_capturing; }
    bool connected() const { return m_connected; }
    const QImage& genericAppIcon() const { return m_genericAppIcon; }
    const QImage& shownKeysetIcon() const { return m_shownKeysetIcon; }

    // --- Selection ------------------------------------------------------------------------
    void setSelectedKeyset(qint64 index);
    void setSelectedLayer(qint64 index);
    // On-screen numbering. Selecting a group keeps the selected control's number when that
    // group has such a control, else takes the group's first control; a group or control
    // without a control of the model is not selected.
    void setSelectedGroup(qint64 group);
    void setSelectedControl(qint64 control);
    // Model numbering: selects the display (the control lit on the surface goes dark).
    void setSelectedDisplay(qint64 display, qint64 group);
    void selectedDisplay(qint64& display, qint64& group) const;
    void setIconForKeyset(const TVKKeyset* keyset);

    void showInspector();
    void showMainWindow();
    void showSummary();
    bool keysetSummaryIsVisible() const;
    void showAboutBox();

    // A click on a surface control (on-screen numbering), and on a picture of a group: its
    // state (0 when the click chose no control, which selects nothing) and the on-screen control
    // that state shows.
    void handleTVKControl(qint64 control, qint64 group);
    void handleMultiStateTVKButton(qint64 group, qint64 state, qint64 control);
    void updateHardwareControlsPreviousGroup(qint64 previousGroup, qint64 previousControl,
                                             qint64 newGroup, qint64 newControl);
    void keysetChangedInSummaryWindow(qint64 keyset);
    void layerChangedInSummaryWindow(qint64 layer);
    void selectionChangedInSummaryWindowToGroup(qint64 group, qint64 control);

    // --- Notifications --------------------------------------------------------------------
    // Posts a notice with the controller as its sender.
    template <class Notice>
    void notifyWithMessage(const Notice& notice)
    {
        corvane::NotificationCenter::defaultCenter().post(notice, this);
    }
    void notifyOfControlChange(qint64 control, qint64 group);
    void notifyOfControlChange(qint64 control, qint64 group, qint64 layer);
    void notifyOfDisplaySelection(qint64 display, qint64 group);
    void notifyOfDisplaySelection(qint64 display, qint64 group, qint64 layer);
    void notifyOfRemoteControlChange(qint64 control, qint64 group, bool visibleEditorUpdate);
    void notifyOfRemoteDisplayChange(qint64 display, qint64 group, bool visibleEditorUpdate);
    void notifyOfControlOnColorChange(qint64 color, qint64 group, qint64 control);
    void notifyOfControlOffColorChange(qint64 color, qint64 group, qint64 control);
    void notifyOfControlPropertyChange(TVKControl* control);
    void notifyOfControlUserNameChange(TVKControl* control);
    void notifyKeysetSummaryNeedsUpdate();

    // --- The service's messages and the connection ------------------------------------------
    void hardwareControlChangeForGroup(qint64 group, qint64 control, qint64 axis,
                                       qint64 value) override;
    void handleCurrentControlInfoForKeyset(qint64 keyset, qint64 layer, qint64 group,
                                           qint64 control) override;
    void handleConnectionStateChange(bool connected) override;
    bool checkConnection();
    void deferedCheckConnection();
    void keepConnectionAlive();
    void updateConnectionMenu(bool connected);
    // Sends "RSoc" to a service; with none, starts one.
    void attemptReconnect();
    TVKServiceState serviceState() const;
    // The indicator's text and tool tip for a state (while starting a service, for no service).
    static QString serviceStateText(TVKServiceState state, bool starting = false);
    static QString serviceStateExplanation(TVKServiceState state, bool starting = false);
    // Draws the indicator when what it shows has changed.
    void refreshConnectionIndicator();
    // While the service does not answer, the checks come less and less often (up to 10 s).
    int connectionPollInterval() const { return m_pollIntervalMs; }
    // Starts the installed service as its autostart entry does at login, or says in an alert
    // exactly what is missing. With restoreLoginItem (Install… found nothing to install) a
    // missing autostart entry is written again first.
    bool startBackgroundService(bool restoreLoginItem = false);
    bool serviceStarting() const { return m_serviceStarting; }
    // Tells a service that started after this application did (or came back after it went
    // away) what changed since the configuration it read was stored: keysets updated, added
    // and deleted, the owner, then the edited keyset, the edited layer and the lit control.
    // Nothing of it goes into the recovery journal: these are not the user's edits.
    void bringServiceInStep();
    // The configuration as the store holds it: what a service started now would read.
    const corvane::PlistValue& storedConfiguration() const { return m_storedConfiguration; }
    void handleTVKLayerSelector(qint64 layer);
    void handleDisplay(qint64 display, qint64 group);
    virtual void handleTVKDisplay(qint64 group, qint64 display);

    // --- Keyset commands ------------------------------------------------------------------
    void handleNewKeyset();
    void handleImportKeyset();
    // Imports the keyset file at the path (the file manager's "Open With", a second start).
    void importKeysetFile(const QString& path);
    // File menu: the installation check with its window, then the service is looked for
    // again; and the uninstaller.
    void handleInstall();
    void handleUninstall();
    void handleExportKeyset();
    // File menu: the selected keyset's sheet (every layer's pictures with the assigned
    // controls' labels, and their table) through the print dialog, or into a PDF file.
    void handlePrintKeyset();
    void handleExportKeysetSheet();
    // Every keyset but keyset 0 as a keyset file into a folder the user picks; a file that is
    // there already is replaced only when the user says so.
    void handleExportAllKeysets();
    void handleCopyKeyset();
    void handlePasteKeyset();
    // Paste has something to paste only while the clipboard holds a keyset.
    static bool clipboardHoldsKeyset();
    void handleClearKeyset();
    void handleDeleteKeyset();
    void handleLockUnlockMenu();
    void handleLockUnlockButton(bool buttonState);
    void setKeysetLockState(bool locked);
    void handleOwnerMenu();
    void handleSetOneTouchRecord();
    void handleDefaultOneTouchRecord();
    void handleEmulationMenu(qint64 mode);
    void handleSetAllMenuItems(qint64 mode);
    void handleKeysetsMenu(QAction* item);
    void updateKeysetsMenu();
    void undoableDeleteKeyset(qint64 index);
    void undoableRestoreKeyset(std::unique_ptr<TVKKeyset> keyset, qint64 index);
    void undoableSwapKeyset(std::unique_ptr<TVKKeyset> keyset, qint64 index,
                            const QString& actionName);
    void handleEndCapture();

    // --- One control's action -----------------------------------------------------------------
    // Edit → Copy, Paste and Clear Action, on the selected control or display. Paste and Clear
    // reach every layer while the inspector applies edits to all layers (a display's action
    // never leaves its layer), each as one undo step.
    void handleCopyAction();
    void handlePasteAction();
    void handleClearAction();
    // Why the command cannot act on the selection now; empty when it can.
    QString actionCommandProblem(TVKMenuCommand command) const;

    // --- Menus ------------------------------------------------------------------------------
    // The controller's menu items; the views put them into their menus.
    QAction* menuItem(TVKMenuCommand command, qint64 tag = 0) const;
    const std::vector<QAction*>& menuItems() const { return m_menuItems; }
    // The Keysets menu: item 0 fixed, item 1 keyset 0, item k + 1 keyset k.
    const std::vector<QAction*>& keysetsMenu() const { return m_keysetsMenu; }
    QAction* undoMenuItem() const { return m_undoItem; }
    QAction* redoMenuItem() const { return m_redoItem; }
    QAction* connectionMenu() const { return m_connectionMenu; }
    QAction* connectionMenuItem() const { return m_connectionMenuItem; }
    // Enables, checks and titles the item; true when it is enabled.
    virtual bool validateMenuItem(QAction* item);
    // Validates every item (a menu is about to show, or the state behind the items changed).
    void validateMenuItems();
    // Undo and Redo: titled with the step, disabled with the reason while its keyset is locked.
    void validateUndoItems();
    // Runs the item's command.
    virtual void perform(QAction* item);

    // --- Control edits ----------------------------------------------------------------------
    void undoableSetUserName(const QString& name, qint64 keyset, qint64 layer, qint64 group,
                             qint64 control, bool copyToAllLayers);
    void undoableSetDisplayUserName(const QString& name, qint64 keyset, qint64 layer, qint64 group,
                                    qint64 display, bool copyToAllLayers);
    // A name given as part of a larger gesture (a built-in command names its control): undone
    // with the rest of that gesture's step. One name per affected layer.
    void recordedSetUserNames(const std::vector<QString>& names, qint64 keyset, qint64 layer,
                              qint64 group, qint64 control, bool copyToAllLayers);
    void undoableSetLatchStyle(const std::vector<bool>& latched, qint64 keyset, qint64 layer,
                               qint64 group, qint64 control, bool copyToAllLayers);
    void undoableSetOnColor(const std::vector<qint64>& colors, qint64 keyset, qint64 layer,
                            qint64 group, qint64 control, bool copyToAllLayers);
    void undoableSetOffColor(const std::vector<qint64>& colors, qint64 keyset, qint64 layer,
                             qint64 group, qint64 control, bool copyToAllLayers);
    void undoableSetBrightness(const std::vector<qint64>& values, qint64 keyset, qint64 layer,
                               qint64 group, qint64 control, bool copyToAllLayers);
    void undoableSetJogSensitivity(const std::vector<qint64>& values, qint64 keyset, qint64 layer,
                                   qint64 group, qint64 control, bool copyToAllLayers);
    void undoableSetJoystickSensitivity(const std::vector<qint64>& values, qint64 keyset,
                                        qint64 layer, qint64 group, qint64 control,
                                        bool copyToAllLayers);
    void undoableInsertAction(const ActionList& actions, qint64 keyset, qint64 layer, qint64 group,
                              qint64 control, const QString& undoName, bool copyToAllLayers);
    void undoableInsertDisplayAction(std::shared_ptr<const TVKAction> action, qint64 keyset,
                                     qint64 layer, qint64 group, qint64 display,
                                     const QString& undoName);

    // --- Preferences and application ports --------------------------------------------------
    QString ipAddress() const;
    void setIpAddress(const QString& address);
    uint ethernetPort() const;
    void setEthernetPort(uint port);
    TVKPreferenceFields& preferenceFields() { return m_preferenceFields; }
    TVKAppPortFields& appPortFields() { return m_appPortFields; }
    void showPreferencePanel();
    virtual void setupPreferencePanel();
    void setupEthernetPreferences();
    static QString nextFieldFromIpAddress(const QString& text, qsizetype& position);
    void okPrefsWindow();
    void cancelPrefsWindow();
    void prefsDidEnd(int returnCode);
    virtual bool validatePreferences();
    bool validateEthernetPreferences();
    virtual void collectPreferences();
    void collectEthernetPreferences();
    bool validateTextField(TVKSheetField field);
    void showAppPortPanel();
    void okAppPortWindow();
    void cancelAppPortWindow();
    void appPortDidEnd(int returnCode);
    // Searches down from 65534 for a port nothing listens on and no other keyset uses.
    void findAvailablePort();
    void appPortChanged();

Q_SIGNALS:
    // The Keysets menu's items were added, removed or retitled.
    void keysetsMenuChanged();
    // The application has written everything and may quit.
    void terminated();
    // editsUnprotected() changed.
    void journalProtectionChanged();

protected:
    // Reads the store and the recovery journal into the model; start-up step 1.
    void readStoredModel();
    // Applies what the recovery journal holds over the stored configuration; step 2.2.
    void replayJournal();
    void registerForNotifications();
    // The window-awake part of start-up (step 8), with or without the second showInspector.
    void windowAndControllerAwake(bool secondInspector);
    // Shows what start-up has to tell the user (a store moved aside, edits recovered).
    void showStartupNotices();
    // Tells the service what the model already holds (the start-up's state, a reconnection):
    // not an edit of the user's, so the recovery journal does not keep it.
    template <typename Send>
    void tellServiceUnjournaled(Send send)
    {
        const bool was = std::exchange(m_journalPaused, true);
        send();
        m_journalPaused = was;
    }
    void showKeysetNameAndIcon();
    TVKKeyset* keysetAt(qint64 index) const;
    TVKControl* controlAt(qint64 keyset, qint64 layer, qint64 group, qint64 control) const;
    // The layers a copy-to-all-layers edit visits, or just the given one.
    std::vector<qint64> affectedLayers(qint64 layer, bool copyToAllLayers) const;
    // The layer of a keyset, or null when either does not exist here.
    const TVKLayer* layerAt(qint64 keyset, qint64 layer) const;
    // Whether the keyset has that layer and the layer a control at exactly that group and
    // index: what the service names must exist here before anything follows it.
    bool hasControl(qint64 keyset, qint64 layer, qint64 group, qint64 control) const;
    bool toOnscreen(qint64 group, qint64 control, qint64& onscreenGroup,
                    qint64& onscreenControl) const;
    // The model's control at an on-screen place, when the model has that control and it is
    // drawn there.
    bool onscreenToModel(qint64 group, qint64 control, int& dataGroup, int& dataControl) const;
    bool controlExists(qint64 group, qint64 control) const;
    // Why a keyset file or the clipboard's keyset cannot be taken; empty when it can.
    static QString keysetArchiveProblem(const corvane::PlistReadResult& read);
    // Every change of the selection goes through here; a new on-screen group is announced.
    void storeSelection(const TVKSelection& next);
    // Selects a control (model numbering) of the selected keyset and layer.
    void selectControl(int group, int control);
    // Tells the views what is selected: the control, or the display.
    void announceSelection();
    // Makes the keyset and layer of an edit the selected ones, announced as a user's choice is.
    void selectKeysetAndLayer(qint64 keyset, qint64 layer);
    // The control is the selection (not a display that happens to share its indices).
    bool isSelectedControl(const TVKControl* control) const;
    // Moves the selection and the surface highlight to an edited control.
    void selectEditedControl(qint64 keyset, qint64 layer, qint64 group, qint64 control);
    // The on and the off colour edits: one pattern, two properties.
    void undoableSetColor(bool off, const std::vector<qint64>& colors, qint64 keyset, qint64 layer,
                          qint64 group, qint64 control, bool copyToAllLayers);
    // What setting one property did to the controls an edit reached.
    struct PropertyEdit
    {
        struct Taken
        {
            size_t index; // of the value and of the layer visited
            qint64 layer;
            corvane::PlistValue old; // the control's value before
        };
        std::vector<TVKControl*> visited; // each layer's control, null where there is none
        std::vector<Taken> taken;         // the controls that carry the property
        bool changed = false;             // one of them holds another value now
    };
    // Sets the property through its row of the property table, value i on the i-th layer
    // visited.
    PropertyEdit setControlProperty(corvane::ControlProperty property,
                                    const std::vector<corvane::PlistValue>& values, qint64 keyset,
                                    qint64 layer, qint64 group, qint64 control,
                                    bool copyToAllLayers);
    // An edit after which every control it reached holds what it held before is neither
    // recorded nor sent. An edit that reached a missing control or one without the property is
    // still recorded and sent, and an undo or redo always registers its other half.
    bool changesNothing(const PropertyEdit& edit) const;
    bool changesNothing(const ActionList& actions, qint64 keyset, qint64 layer, qint64 group,
                        qint64 control, bool copyToAllLayers) const;
    // Brightness and the sensitivities: no undo, one message per control changed.
    void setPropertyWithoutUndo(corvane::ControlProperty property, corvane::ControlProperty sentAs,
                                const std::vector<qint64>& values, qint64 keyset, qint64 layer,
                                qint64 group, qint64 control, bool copyToAllLayers);
    // After a latch or colour edit: moves the selection to the edited control, or announces the
    // change of the selected one.
    void finishControlEdit(const std::vector<TVKControl*>& visited, bool copyToAllLayers,
                           qint64 keyset, qint64 layer, qint64 group, qint64 control);
    QAction* addMenuItem(TVKMenuCommand command, const QString& title, qint64 tag = 0);
    void makeMenuItems();
    void makeSheetMenuItems();
    void journal(corvane::MessageID id, const QByteArray& body);
    // Journals a change the service is not told about (TVKRecoveryJournal's own IDs).
    void journalChange(corvane::MessageID id, qint64 keyset, quint32 state);
    // The recovery journal kept short and kept writable (TVKController_Journal.cpp): every
    // record goes through appendToJournal; a written store empties the journal.
    void appendToJournal(corvane::MessageID id, qint64 keyset, const QByteArray& body);
    void journalEmptied();
    void compactJournal();
    bool writeJournalSnapshot(QString* error);
    void retryJournal();
    void setEditsUnprotected(const QString& reason);
    // The keyset and owner messages that turn the stored configuration into the model's.
    void sendChangesSinceStored();
    // Applies one journaled change over the model at start-up.
    bool applyJournalRecord(corvane::MessageID id, int editedKeyset, const QByteArray& body,
                            QString* reason);
    void validateTitledKeysetItem(QAction* item, const QString& verb, bool enabled);
    void makeActionCommandItems();
    bool validateActionCommandItem(QAction* item);
    // The selected control, or the selected display: what the action commands act on.
    TVKControl* actionCommandTarget() const;

    // Edit notifications (posted by the inspector).
    void handleUserNameChange(const corvane::note::UserNameChange& notice);
    void handleDisplayUserNameChange(const corvane::note::DisplayUserNameChange& notice);
    void handleLatchStyleChange(const corvane::note::LatchChange& notice);
    void handleOnColorChange(const corvane::note::ColorChange& notice);
    void handleOffColorChange(const corvane::note::OffColorChange& notice);
    void handleBrightnessChange(const corvane::note::BrightnessChange& notice);
    void handleJogSensitivityChange(const corvane::note::JogSensChange& notice);
    void handleJoystickSensitivityChange(const corvane::note::JoySensChange& notice);
    void handleInsertEditedAction(const corvane::note::InsertEditedAction& notice);
    void handleDeleteAction(const corvane::note::DeleteAction& notice);
    void handleInsertEditedDisplayAction(const corvane::note::InsertEditedDisplayAction& notice);
    void handleDeleteDisplayAction(const corvane::note::DeleteDisplayAction& notice);
    void handleInspectorNeedsUpdate(const corvane::note::InspUpdate& notice);
    void handleStartCapture(const corvane::note::StartCapture& notice);

    // The handlers of one value per layer: the value and the copy flag from the notice, the
    // target from the model's selection.
    template <typename T, typename Primitive>
    void handleValueEdit(const T& value, bool copyToLayers, Primitive primitive);
    // Every edit primitive of one value per layer runs through here.
    template <typename Apply>
    std::vector<TVKControl*> forEachAffectedControl(qint64 keyset, qint64 layer, qint64 group,
                                                    qint64 control, bool copyToAllLayers,
                                                    Apply apply);

    Views m_views;
    QString m_storePath;
    std::unique_ptr<corvane::TVKUserDefaults> m_defaults;
    std::unique_ptr<TVKRecoveryJournal> m_journal;
    std::unique_ptr<TVKModelData> m_modelData;
    corvane::PlistValue m_storedConfiguration;
    std::unique_ptr<TVK_PrivateMessenger> m_messenger;
    std::unique_ptr<TVK_Constant_Server> m_constantServer;
    TVKUndoManager m_undoManager;
    std::vector<corvane::NotificationCenter::Observation> m_observations;

    std::vector<QAction*> m_menuItems;
    std::vector<QAction*> m_keysetsMenu;
    QAction* m_undoItem = nullptr;
    QAction* m_redoItem = nullptr;
    QAction* m_connectionMenu = nullptr;
    QAction* m_connectionMenuItem = nullptr;
    QIcon m_connectedImage;
    QIcon m_notConnectedImage;
    QIcon m_noServiceImage;
    std::optional<std::pair<TVKServiceState, bool>> m_shownServiceState;
    QTimer* m_pollTimer = nullptr;
    int m_pollIntervalMs = 1000;
    bool m_serviceStarting = false;
    QImage m_genericAppIcon;
    QImage m_shownKeysetIcon;

    TVKPreferenceFields m_preferenceFields;
    TVKAppPortFields m_appPortFields;

    qint64 m_peripheralIndex = 0;

    bool m_capturing = false;
    bool m_isWindowAwake = false;
    bool m_amIAwake = false;
    bool m_isAppFinishedLaunching = false;
    bool m_isWindowKey = false;
    bool m_connected = false;
    bool m_installDone = false;
    bool m_terminated = false;
    bool m_journalPaused = false;
    bool m_journalMustGoAside = false;
    qint64 m_editsSinceStored = 0;
    QString m_editsUnprotected;
    qint64 m_storedSize = 0;
    int m_journalRetryMs = 0;
    QTimer* m_journalCompaction = nullptr;
    QTimer* m_journalRetry = nullptr;
    // An action edit made by a menu command, not by the inspector: the inspector, which does not
    // hold the new action yet, shows the control afresh.
    bool m_editFromMenuCommand = false;

    // What start-up has to tell the user once the application runs.
    std::vector<TVKAlert> m_startupNotices;
};
