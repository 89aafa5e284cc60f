#include "app/TVKController.h"

#include "app/TVKNoViews.h"
#include "app/TVKRecoveryJournal.h"
#include "core/Log.h"
#include "core/Notifications.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"
#include "service/ConfigurationEdits.h"
#include "service/TVK_PrivateMessenger.h"
#include "surface/TVK_Constant_Server.h"

#include <QAction>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QIcon>
#include <QPainter>

namespace note = corvane::note;
using corvane::PlistValue;

namespace {

TVKController* g_controller = nullptr;

TVKNoViews& noViews()
{
    static TVKNoViews views;
    return views;
}

// The desktop's icon for an application without one of its own, 32 x 32.
QImage makeGenericAppIcon()
{
    const QIcon themed = QIcon::fromTheme(QStringLiteral("application-x-executable"));
    if (!themed.isNull())
        return themed.pixmap(32, 32).toImage();
    // No icon theme: a plain application tile.
    QImage image(32, 32, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x5a, 0x60, 0x68), 1.5));
    painter.setBrush(QColor(0xd8, 0xdc, 0xe2));
    painter.drawRoundedRect(QRectF(3.5, 3.5, 25, 25), 5, 5);
    painter.setBrush(QColor(0x5a, 0x60, 0x68));
    painter.drawRect(QRectF(3.5, 3.5, 25, 6));
    return image;
}

} // namespace

TVKController::TVKController()
    : m_storePath(corvane::TVKUserDefaults::defaultPath()), m_genericAppIcon(makeGenericAppIcon())
{
    g_controller = this;
    setViews({});
    makeMenuItems();
}

TVKController::~TVKController()
{
    m_observations.clear();
    if (g_controller == this)
        g_controller = nullptr;
    if (TVK_Constant_Server::defaultConstantServer() == m_constantServer.get())
        TVK_Constant_Server::setDefaultConstantServer(nullptr);
    if (m_modelData && TVKModelData::defaultModelData() == m_modelData.get())
        TVKModelData::setDefaultModelData(nullptr);
    // The messenger goes before the model it reads from.
    m_messenger.reset();
}

TVKController* TVKController::c()
{
    return g_controller;
}

void TVKController::setViews(const Views& views)
{
    m_views.dialogs = views.dialogs ? views.dialogs : &noViews();
    m_views.windows = views.windows ? views.windows : &noViews();
    m_views.sheets = views.sheets ? views.sheets : &noViews();
    m_views.installation = views.installation ? views.installation : &noViews();
}

// --- Factories -------------------------------------------------------------------------------

std::unique_ptr<TVK_PrivateMessenger> TVKController::makeMessenger()
{
    corvane::log(QStringLiteral("TVKController subclasses must override makeMessenger"));
    return nullptr;
}

std::unique_ptr<TVKModelData> TVKController::makeModelData()
{
    corvane::log(QStringLiteral("TVKController subclasses must override makeModelData"));
    return nullptr;
}

std::unique_ptr<TVKModelData> TVKController::makeModelDataWithArchive(const PlistValue&)
{
    corvane::log(QStringLiteral("TVKController subclasses must override makeModelDataWithArchive"));
    return nullptr;
}

TVKInstallationNames TVKController::controllerName()
{
    // The text names an older form of the operation; kept as it is.
    corvane::log(QStringLiteral(
        "TVKController subclasses must override controllerName:driverName:andBackgroundAppName:"));
    return {};
}

std::unique_ptr<TVKKeyset> TVKController::makeKeysetFromArchive(const PlistValue&)
{
    corvane::log(QStringLiteral("TVKController subclasses must override makeKeysetFromArchive"));
    return nullptr;
}

QString TVKController::keysetFileType() const
{
    corvane::log(QStringLiteral("TVKController subclasses must override keysetFileType"));
    return {};
}

void TVKController::setOpenStatesForPeripheralWindows()
{
    corvane::log(QStringLiteral("override - setOpenStatesForPeripheralWindows!"));
}

void TVKController::saveOpenStatesForPeripheralWindows()
{
    corvane::log(QStringLiteral("override saveOpenStatesForPeripheralWindows!!"));
}

void TVKController::openPeripheralWindow(qint64 tag)
{
    m_peripheralIndex = tag;
    corvane::log(QStringLiteral("override openPeripheralWindow!!"));
}

void TVKController::getGlobalDefaults() {}

void TVKController::saveGlobalDefaults() {}

QString TVKController::inspectorNibName() const
{
    return QStringLiteral("Inspector");
}

// --- Start-up ----------------------------------------------------------------------------------

void TVKController::readStoredModel()
{
    m_defaults = std::make_unique<corvane::TVKUserDefaults>(m_storePath);
    m_journal = std::make_unique<TVKRecoveryJournal>(TVKRecoveryJournal::pathBeside(m_storePath));

    QString damage;
    if (m_defaults->state() == corvane::TVKUserDefaults::State::Unreadable) {
        damage = m_defaults->error();
    } else {
        const PlistValue& stored = m_defaults->objectForKey(u"TVKModelData");
        if (stored.isDict())
            damage = TVKModelData::archiveLimitExceeded(stored);
    }
    if (!damage.isEmpty()) {
        // Never written over: the file goes aside with its journal, and the run starts afresh.
        const QString suffix =
            QStringLiteral(".unreadable-") +
            QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
        QString movedTo;
        QString error;
        if (m_defaults->state() == corvane::TVKUserDefaults::State::Unreadable) {
            movedTo = m_defaults->moveAside(&error);
        } else if (QFile::rename(m_storePath, m_storePath + suffix)) {
            movedTo = m_storePath + suffix;
            m_defaults->reload();
        } else {
            error = QStringLiteral("cannot rename %1").arg(m_storePath);
        }
        if (QFile::exists(m_journal->path()))
            QFile::rename(m_journal->path(), m_journal->path() + suffix);
        corvane::log(QStringLiteral("stored configuration unreadable: %1").arg(damage));
        TVKAlert alert;
        alert.message = tr("The Stored Configuration Could Not Be Read");
        alert.informativeText =
            movedTo.isEmpty()
                ? tr("%1\n\nIt could not be moved aside either (%2), so Corvane will not save "
                     "over it. Corvane starts with a new configuration.")
                      .arg(damage, error)
                : tr("%1\n\nThe file was moved to \"%2\" and nothing in it was changed. Corvane "
                     "starts with a new configuration.")
                      .arg(damage, movedTo);
        alert.buttons = {tr("OK")};
        m_startupNotices.push_back(alert);
    }

    const PlistValue& stored = m_defaults->objectForKey(u"TVKModelData");
    if (!stored.isNull()) {
        m_modelData = makeModelDataWithArchive(stored);
        updateKeysetsMenu();
    } else {
        m_modelData = makeModelData();
    }
    if (stored.isDict()) {
        m_storedConfiguration = stored;
    } else {
        // Without a configuration in the store a service starts from a new one, as this did.
        m_storedConfiguration = PlistValue::makeDict();
        if (m_modelData)
            m_modelData->writeTo(m_storedConfiguration);
    }
}

void TVKController::replayJournal()
{
    if (!m_journal)
        return;
    const TVKRecoveryJournal::Contents contents = m_journal->read();
    if (!contents.error.isEmpty()) {
        corvane::log(QStringLiteral("recovery journal unreadable: %1").arg(contents.error));
        QFile::rename(m_journal->path(),
                      m_journal->path() + QStringLiteral(".unreadable-") +
                          QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss")));
    }
    const QString storedEpoch = m_defaults->objectForKey(u"TVKJournalEpoch").toString();
    const bool alreadyStored =
        !storedEpoch.isEmpty() && storedEpoch == QString::number(contents.epoch);
    int applied = 0;
    int refused = 0;
    if (m_modelData && !alreadyStored) {
        for (const TVKRecoveryJournal::Record& record : contents.records) {
            QString reason;
            if (applyConfigurationMessage(*m_modelData, record.id, record.body, record.editedKeyset,
                                          &reason)) {
                ++applied;
            } else {
                ++refused;
                corvane::log(
                    QStringLiteral("recovery journal: record not applied: %1").arg(reason));
            }
        }
    }
    if (contents.tornTail)
        corvane::log(QStringLiteral("recovery journal: an incomplete last record was dropped"));

    QString error;
    if (!m_journal->open(&error))
        corvane::log(QStringLiteral("recovery journal cannot be opened: %1").arg(error));
    if (applied == 0 && refused == 0) {
        if (alreadyStored)
            m_journal->clear();
        return;
    }
    // The recovered edits are made safe at once; the journal starts again.
    writeDataToDefaults();
    TVKAlert alert;
    alert.message = tr("Unsaved Edits Recovered");
    alert.informativeText =
        tr("Corvane did not quit normally last time. %n edit(s) made after the configuration "
           "was last saved were recovered and saved.",
           nullptr, applied);
    if (refused > 0)
        alert.informativeText +=
            QLatin1Char(' ') + tr("%n edit(s) could not be applied.", nullptr, refused);
    alert.buttons = {tr("OK")};
    m_startupNotices.push_back(alert);
}

void TVKController::awakeFromNib()
{
    readStoredModel();
    getGlobalDefaults();
    replayJournal();

    setSelectedGroup(0);
    setSelectedControl(0);
    m_modelDataGroupIndex = 0;
    m_modelDataControlIndex = 0;
    setSelectedKeyset(0);
    setSelectedLayer(0);

    m_messenger = makeMessenger();
    if (m_messenger) {
        m_messenger->setSendObserver(
            [this](corvane::MessageID id, const QByteArray& body) { journal(id, body); });
        connect(m_messenger.get(), &TVK_CarbonCocoaMessenger::serviceReturned, this,
                &TVKController::bringServiceInStep);
        m_messenger->requestKeyset(m_selectedKeyset, m_selectedLayer, m_modelDataGroupIndex,
                                   m_modelDataControlIndex);
    }
    toOnscreen(m_modelDataGroupIndex, m_modelDataControlIndex, m_selectedGroup, m_selectedControl);
    if (m_modelData) {
        copySelectionToModelData();
        showKeysetNameAndIcon();
    }
    registerForNotifications();
    m_amIAwake = true;
    if (m_isWindowAwake)
        windowAndControllerAwake(true);
}

void TVKController::journal(corvane::MessageID id, const QByteArray& body)
{
    if (m_journal && m_journal->isOpen() && isConfigurationMessage(id) && !m_bringingServiceInStep)
        m_journal->append(id, int(m_selectedKeyset), body);
}

void TVKController::windowAndControllerAwake(bool secondInspector)
{
    notifyWithMessage(note::SelectedKeysetChange{});
    notifyOfRemoteControlChange(m_selectedControl, m_selectedGroup, true);
    showMainWindow();
    showInspector();
    if (m_isAppFinishedLaunching && m_isWindowKey && !m_installDone)
        installIfNeeded();
    if (secondInspector)
        showInspector();
}

void TVKController::windowIsAwake()
{
    m_isWindowAwake = true;
    if (m_amIAwake)
        windowAndControllerAwake(false);
}

void TVKController::applicationDidFinishLaunching()
{
    m_isAppFinishedLaunching = true;
    showStartupNotices();
    if (m_isWindowAwake && m_amIAwake && m_isWindowKey && !m_installDone)
        installIfNeeded();
}

void TVKController::windowDidBecomeKey(TVKWindow window)
{
    m_isWindowKey = true;
    if (window == TVKWindow::Main && !m_installDone && m_isWindowAwake && m_amIAwake &&
        m_isAppFinishedLaunching)
        installIfNeeded();
}

void TVKController::handleMainWindowChange(TVKWindow)
{
    corvane::log(QStringLiteral("override handleMainWindowChange"));
}

void TVKController::showStartupNotices()
{
    for (const TVKAlert& alert : std::exchange(m_startupNotices, {}))
        m_views.dialogs->runAlert(alert);
}

void TVKController::installIfNeeded()
{
    if (!m_views.windows->isVisible(TVKWindow::Main))
        m_views.windows->show(TVKWindow::Main);
    m_installDone = true;
    const TVKInstallationNames names = controllerName();
    // The application name is fetched with the others but the installer does not take it.
    TVKInstallationNames passed = names;
    passed.applicationName.clear();
    m_views.installation->startInstallForController(passed, needsSetup());
    triggerAXAlert();
    getGlobalDefaults();
    setOpenStatesForPeripheralWindows();
}

void TVKController::handleInstall()
{
    TVKInstallationNames passed = controllerName();
    passed.applicationName.clear();
    if (!m_views.installation->startInstallForController(passed, needsSetup())) {
        // Chosen from the menu, the check says what it found rather than nothing.
        m_views.dialogs->runAlert(
            {tr("The %1 components are installed and current.")
                 .arg(controllerName().applicationName),
             tr("The MIDI driver and the support folder with the background service are in "
                "place, and the service is running. Nothing needs to be installed."),
             {tr("OK")}});
    }
    // A service the installation just started has a new port.
    if (m_messenger)
        m_messenger->restartRemotePort();
    checkConnection();
    getGlobalDefaults();
}

void TVKController::handleUninstall()
{
    m_views.installation->startUninstallForController(controllerName());
}

void TVKController::triggerAXAlert()
{
    const std::optional<QPointF> origin = m_views.windows->mainWindowOrigin();
    const QPointF point = origin ? *origin + QPointF(20, 20) : QPointF(20, 20);
    TVKAXObjectInfo objectInfo;
    m_views.installation->getAXObjects(objectInfo, point);
}

void TVKController::registerForNotifications()
{
    corvane::NotificationCenter& center = corvane::NotificationCenter::defaultCenter();
    const auto observe = [&]<class Notice>(void (TVKController::*handler)(const Notice&)) {
        m_observations.push_back(center.observe<Notice>(
            nullptr, [this, handler](const Notice& notice) { (this->*handler)(notice); }));
    };
    observe(&TVKController::handleUserNameChange);
    observe(&TVKController::handleDisplayUserNameChange);
    observe(&TVKController::handleLatchStyleChange);
    observe(&TVKController::handleOnColorChange);
    observe(&TVKController::handleOffColorChange);
    observe(&TVKController::handleBrightnessChange);
    observe(&TVKController::handleJogSensitivityChange);
    observe(&TVKController::handleJoystickSensitivityChange);
    observe(&TVKController::handleInsertEditedAction);
    observe(&TVKController::handleInsertEditedDisplayAction);
    observe(&TVKController::handleDeleteDisplayAction);
    observe(&TVKController::handleDeleteAction);
    observe(&TVKController::handleStartCapture);
    observe(&TVKController::handleInspectorNeedsUpdate);
}

// --- Shutdown and persistence ------------------------------------------------------------------

void TVKController::handleTerminateMessage()
{
    if (m_terminated)
        return;
    m_terminated = true;
    writeDataToDefaults();
    saveOpenStatesForPeripheralWindows();
    Q_EMIT terminated();
}

bool TVKController::writeDataToDefaults()
{
    if (!m_defaults || !m_modelData)
        return false;
    PlistValue dict = PlistValue::makeDict();
    m_modelData->writeTo(dict);
    const PlistValue written = dict;
    m_defaults->setObject(QStringLiteral("TVKModelData"), std::move(dict));
    if (m_journal && m_journal->isOpen())
        m_defaults->setObject(QStringLiteral("TVKJournalEpoch"),
                              PlistValue(QString::number(m_journal->epoch())));
    QString error;
    const bool stored = m_defaults->synchronize(&error);
    if (stored)
        m_storedConfiguration = written;
    else
        corvane::log(QStringLiteral("the configuration could not be saved: %1").arg(error));
    saveGlobalDefaults();
    // Only a written store makes the journal's records redundant.
    if (stored && m_journal && m_journal->isOpen())
        m_journal->clear();
    return stored;
}

// --- Selection ---------------------------------------------------------------------------------

TVKKeyset* TVKController::keysetAt(qint64 index) const
{
    if (!m_modelData || index < 0 || index >= m_modelData->numberOfKeysets())
        return nullptr;
    return m_modelData->keysetAtIndex(int(index));
}

void TVKController::copySelectionToModelData()
{
    if (!m_modelData)
        return;
    m_modelData->setSelectedKeysetIndex(int(m_selectedKeyset));
    m_modelData->setSelectedLayerIndex(int(m_selectedLayer));
    m_modelData->setSelectedGroupIndex(int(m_modelDataGroupIndex));
    m_modelData->setSelectedControlIndex(int(m_modelDataControlIndex));
}

void TVKController::showKeysetNameAndIcon()
{
    const TVKKeyset* keyset = m_modelData ? m_modelData->selectedKeyset() : nullptr;
    m_views.windows->showKeysetName(keyset ? keyset->name() : QString());
    setIconForKeyset(keyset);
}

void TVKController::setSelectedKeyset(qint64 index)
{
    m_selectedKeyset = index;
    if (m_modelData)
        m_modelData->setSelectedKeysetIndex(int(index));
    notifyWithMessage(note::SelectedKeysetChange{});
    notifyOfControlChange(m_selectedControl, m_selectedGroup);
    showKeysetNameAndIcon();
    if (m_messenger)
        m_messenger->sendChangeEditKeysetMessage(index);
    const TVKKeyset* keyset = m_modelData ? m_modelData->selectedKeyset() : nullptr;
    setKeysetLockState(keyset && keyset->locked());
}

void TVKController::setSelectedLayer(qint64 index)
{
    m_selectedLayer = index;
    if (m_modelData)
        m_modelData->setSelectedLayerIndex(int(index));
    if (m_messenger)
        m_messenger->sendChangeEditLayerMessage(index);
}

void TVKController::setSelectedGroup(qint64 group)
{
    if (group == m_selectedGroup)
        return;
    m_selectedGroup = group;
    notifyWithMessage(note::SelectedGroupChange{});
}

void TVKController::setSelectedControl(qint64 control)
{
    m_selectedControl = control;
    if (!m_constantServer)
        return;
    int group = 0;
    int index = 0;
    if (!m_constantServer->onscreenGroup(int(m_selectedGroup), int(control), group, index))
        return;
    m_modelDataGroupIndex = group;
    m_modelDataControlIndex = index;
    if (m_modelData) {
        m_modelData->setSelectedGroupIndex(group);
        m_modelData->setSelectedControlIndex(index);
    }
}

void TVKController::setSelectedDisplay(qint64 display, qint64 group)
{
    m_selectedDisplay = display;
    m_selectedDisplayGroup = group;
    if (m_modelData)
        m_modelData->setSelectedDisplay(int(display), int(group));
}

void TVKController::selectedDisplay(qint64& display, qint64& group) const
{
    display = m_selectedDisplay;
    group = m_selectedDisplayGroup;
}

void TVKController::setIconForKeyset(const TVKKeyset* keyset)
{
    QImage icon;
    if (keyset && !keyset->icon().isEmpty())
        icon = QImage::fromData(keyset->icon());
    m_shownKeysetIcon = icon.isNull() ? m_genericAppIcon : icon;
    m_views.windows->showKeysetIcon(m_shownKeysetIcon);
}

void TVKController::showInspector()
{
    // The inspector is made on first use, from the nib named for this surface family.
    m_views.windows->show(TVKWindow::Inspector);
    notifyWithMessage(note::SelectedKeysetChange{});
    notifyOfControlChange(m_selectedControl, m_selectedGroup);
}

void TVKController::showMainWindow()
{
    if (m_views.windows->exists(TVKWindow::Main))
        m_views.windows->makeKeyAndOrderFront(TVKWindow::Main);
}

void TVKController::showSummary()
{
    m_views.windows->show(TVKWindow::Summary);
}

bool TVKController::keysetSummaryIsVisible() const
{
    return m_views.windows->exists(TVKWindow::Summary) &&
           m_views.windows->isVisible(TVKWindow::Summary);
}

void TVKController::showAboutBox()
{
    m_views.windows->show(TVKWindow::AboutBox);
}

bool TVKController::toOnscreen(qint64 group, qint64 control, qint64& onscreenGroup,
                               qint64& onscreenControl) const
{
    if (!m_constantServer)
        return false;
    int g = 0;
    int c = 0;
    m_constantServer->modelDataGroupID(int(group), int(control), g, c);
    onscreenGroup = g;
    onscreenControl = c;
    return true;
}

void TVKController::handleTVKControl(qint64 control, qint64 group)
{
    m_displaySelected = false;
    const qint64 previousModelGroup = m_modelData ? m_modelData->selectedGroupIndex() : 0;
    const qint64 previousModelControl = m_modelData ? m_modelData->selectedControlIndex() : 0;
    const qint64 previousGroup = m_selectedGroup;
    const qint64 previousControl = m_selectedControl;
    setSelectedGroup(group);
    setSelectedControl(control);
    if (group == previousGroup && control == previousControl)
        return;
    if (!m_constantServer)
        return;
    int dataGroup = 0;
    int dataControl = 0;
    if (!m_constantServer->onscreenGroup(int(group), int(control), dataGroup, dataControl))
        return;
    m_modelDataGroupIndex = dataGroup;
    m_modelDataControlIndex = dataControl;
    notifyOfControlChange(m_selectedControl, m_selectedGroup);
    updateHardwareControlsPreviousGroup(previousModelGroup, previousModelControl,
                                        m_modelDataGroupIndex, m_modelDataControlIndex);
}

void TVKController::handleMultiStateTVKButton(qint64 group, qint64 value)
{
    if (value == 0) {
        m_displaySelected = false;
        setSelectedGroup(group);
        return;
    }
    handleTVKControl(value, group);
}

void TVKController::updateHardwareControlsPreviousGroup(qint64 previousGroup,
                                                        qint64 previousControl, qint64 newGroup,
                                                        qint64 newControl)
{
    if (!m_messenger)
        return;
    m_messenger->sendControlStateMessage(0, previousGroup, previousControl, 0);
    m_messenger->sendControlStateMessage(1, newGroup, newControl, 0);
}

void TVKController::keysetChangedInSummaryWindow(qint64 keyset)
{
    setSelectedKeyset(keyset);
}

void TVKController::layerChangedInSummaryWindow(qint64 layer)
{
    setSelectedLayer(layer);
    notifyWithMessage(note::SelectedLayerChange{});
    notifyWithMessage(note::RemoteLayerChange{});
}

void TVKController::selectionChangedInSummaryWindowToGroup(qint64 group, qint64 control)
{
    hardwareControlChangeForGroup(group, control, 0, 1);
}

// --- Notifications -----------------------------------------------------------------------------

void TVKController::notifyOfControlChange(qint64 control, qint64 group)
{
    notifyOfControlChange(control, group, m_selectedLayer);
}

void TVKController::notifyOfControlChange(qint64 control, qint64 group, qint64 layer)
{
    TVKControl* selected = m_modelData ? m_modelData->selectedControl() : nullptr;
    notifyWithMessage(note::SelectionChange{group, control, layer, selected});
}

void TVKController::notifyOfDisplaySelection(qint64 display, qint64 group)
{
    notifyOfDisplaySelection(display, group, m_selectedLayer);
}

void TVKController::notifyOfDisplaySelection(qint64 display, qint64 group, qint64 layer)
{
    TVKControl* object = m_modelData
                             ? m_modelData->displayForKeyset(int(m_selectedKeyset), int(layer),
                                                             int(group), int(display))
                             : nullptr;
    // The display's index travels under the control's key.
    notifyWithMessage(note::DisplaySelectionChange{group, display, layer, object});
}

void TVKController::notifyOfRemoteControlChange(qint64 control, qint64 group,
                                                bool visibleEditorUpdate)
{
    TVKControl* object = nullptr;
    if (m_modelData && m_constantServer) {
        int dataGroup = 0;
        int dataControl = 0;
        if (m_constantServer->onscreenGroup(int(group), int(control), dataGroup, dataControl))
            object = m_modelData->controlForKeyset(int(m_selectedKeyset), int(m_selectedLayer),
                                                   dataGroup, dataControl);
    }
    notifyWithMessage(note::RemoteSelectionChange{group, control, visibleEditorUpdate, object});
}

void TVKController::notifyOfRemoteDisplayChange(qint64 display, qint64 group,
                                                bool visibleEditorUpdate)
{
    TVKControl* object = m_modelData ? m_modelData->selectedDisplay() : nullptr;
    notifyWithMessage(
        note::RemoteDisplaySelectionChange{group, display, visibleEditorUpdate, object});
}

void TVKController::notifyOfControlOnColorChange(qint64 color, qint64 group, qint64 control)
{
    notifyWithMessage(note::DispColorChange{color, group, control});
}

void TVKController::notifyOfControlOffColorChange(qint64 color, qint64 group, qint64 control)
{
    notifyWithMessage(note::DispOffColorChange{color, group, control});
}

void TVKController::notifyOfControlPropertyChange(TVKControl* control)
{
    if (!control)
        return;
    notifyWithMessage(note::ControlPropertyChange{control});
}

void TVKController::notifyOfControlUserNameChange(TVKControl* control)
{
    if (!control)
        return;
    notifyWithMessage(note::ShowUserNameChange{control});
}

void TVKController::notifyKeysetSummaryNeedsUpdate()
{
    notifyWithMessage(note::UpdateKSum{});
}

void TVKController::handleStartCapture(const note::StartCapture&)
{
    m_capturing = true;
    validateMenuItems();
}

void TVKController::handleEndCapture()
{
    m_capturing = false;
    notifyWithMessage(note::EndCapture{});
    validateMenuItems();
}
