#include "app/TVKController.h"

#include "app/TVKNoViews.h"
#include "app/TVKRecoveryJournal.h"
#include "core/Log.h"
#include "core/MoveAside.h"
#include "core/Notifications.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "service/ConfigurationEdits.h"
#include "service/TVK_MessageSpecs.h"
#include "service/TVK_PrivateMessenger.h"
#include "surface/TVK_Constant_Server.h"

#include <QAction>
#include <QClipboard>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QIcon>
#include <QPainter>
#include <QTimer>

namespace note = corvane::note;
namespace key = corvane::key;
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
    // Paste follows what the clipboard holds, whoever put it there.
    if (auto* app = qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        QObject::connect(app->clipboard(), &QClipboard::dataChanged, this,
                         [this] { validateMenuItems(); });
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
    m_storedSize = QFileInfo(m_defaults->path()).size();

    QString damage;
    if (m_defaults->state() == corvane::TVKUserDefaults::State::Unreadable) {
        damage = m_defaults->error();
    } else {
        const PlistValue& stored = m_defaults->objectForKey(key::ModelData);
        if (stored.isDict())
            damage = TVKModelData::archiveLimitExceeded(stored);
    }
    if (!damage.isEmpty()) {
        // Never written over: the file goes aside with its journal, and the run starts afresh.
        QString movedTo;
        QString error;
        if (m_defaults->state() == corvane::TVKUserDefaults::State::Unreadable) {
            movedTo = m_defaults->moveAside(&error);
        } else {
            movedTo = corvane::moveFileAside(m_storePath, &error);
            if (!movedTo.isNull())
                m_defaults->reload();
        }
        QString journalError;
        if (QFile::exists(m_journal->path()) &&
            corvane::moveFileAside(m_journal->path(), &journalError).isNull())
            corvane::log(journalError);
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

    const PlistValue& stored = m_defaults->objectForKey(key::ModelData);
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
    // A journal that is not whole goes aside before anything is written over it: what it holds
    // beyond the records read here stays for the user.
    QString keptAs;
    if (!contents.error.isEmpty() || !contents.damaged.isEmpty() || contents.tornTail) {
        if (!contents.error.isEmpty())
            corvane::log(QStringLiteral("recovery journal unreadable: %1").arg(contents.error));
        for (const QString& damage : contents.damaged)
            corvane::log(
                QStringLiteral("recovery journal: %1 was damaged and skipped").arg(damage));
        if (contents.tornTail)
            corvane::log(QStringLiteral("recovery journal: an incomplete last record was dropped"));
        QString error;
        keptAs = corvane::moveFileAside(m_journal->path(), &error, QDateTime::currentDateTime(),
                                        contents.error.isEmpty() ? QStringLiteral("damaged")
                                                                 : QStringLiteral("unreadable"));
        if (keptAs.isNull())
            corvane::log(QStringLiteral("recovery journal: %1").arg(error));
    }
    const QString storedEpoch = m_defaults->objectForKey(key::JournalEpoch).toString();
    const bool alreadyStored =
        !storedEpoch.isEmpty() && storedEpoch == QString::number(contents.epoch);
    int applied = 0;
    int refused = 0;
    if (m_modelData && !alreadyStored) {
        for (const TVKRecoveryJournal::Record& record : contents.records) {
            QString reason;
            if (record.id == TVKRecoveryJournal::Snapshot) {
                // A compacted journal: the configuration as it was then, with the edits it holds.
                const corvane::PlistReadResult snapshot = corvane::PlistCodec::read(record.body);
                const PlistValue& configuration =
                    snapshot.ok ? snapshot.value.value(key::ModelData) : PlistValue();
                if (configuration.isDict()) {
                    m_modelData = makeModelDataWithArchive(configuration);
                    updateKeysetsMenu();
                    applied += int(snapshot.value.value(key::Count).toInteger());
                } else {
                    ++refused;
                    corvane::log(QStringLiteral("recovery journal: the snapshot could not be "
                                                "read: %1")
                                     .arg(snapshot.ok ? QStringLiteral("no configuration")
                                                      : snapshot.error.toString()));
                }
            } else if (applyJournalRecord(record.id, record.editedKeyset, record.body, &reason)) {
                ++applied;
            } else {
                ++refused;
                corvane::log(
                    QStringLiteral("recovery journal: record not applied: %1").arg(reason));
            }
        }
    }

    QString error;
    // Not over a damaged journal that could not be moved aside: its edits are worth more than
    // the protection of this run's.
    if (keptAs.isNull() && (!contents.damaged.isEmpty() || !contents.error.isEmpty())) {
        // Tried again later: once it can go aside, a new journal takes its place.
        m_journalMustGoAside = true;
        setEditsUnprotected(tr("the damaged recovery journal could not be moved aside"));
    } else if (!m_journal->open(&error)) {
        setEditsUnprotected(error);
    }
    const bool damaged = !contents.damaged.isEmpty();
    if (applied == 0 && refused == 0 && !damaged) {
        if (alreadyStored)
            m_journal->clear();
        return;
    }
    // The recovered edits are made safe at once; the journal starts again.
    if (applied > 0 || refused > 0)
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
    if (damaged) {
        alert.informativeText +=
            QStringLiteral("\n\n") +
            tr("Part of the record of those edits was damaged and skipped: %1.")
                .arg(contents.damaged.join(QStringLiteral("; ")));
        alert.informativeText +=
            QLatin1Char(' ') +
            (keptAs.isNull() ? tr("The record could not be moved aside and was left as it is.")
                             : tr("The damaged record was kept as \"%1\".").arg(keptAs));
    }
    alert.buttons = {tr("OK")};
    m_startupNotices.push_back(alert);
}

bool TVKController::applyJournalRecord(corvane::MessageID id, int editedKeyset,
                                       const QByteArray& body, QString* reason)
{
    const auto state = [&] { return TVK_IncomingMessageSpec(body).deserializeNextField(); };
    TVKKeyset* keyset = keysetAt(editedKeyset);
    switch (id) {
    case TVKRecoveryJournal::LockState:
    case TVKRecoveryJournal::OneTouchRecord:
        if (!keyset) {
            if (reason)
                *reason = QStringLiteral("no keyset %1").arg(editedKeyset);
            return false;
        }
        if (id == TVKRecoveryJournal::LockState)
            keyset->setLocked(state() != 0);
        else
            keyset->setOneTouchRecord(state() != 0);
        return true;
    case TVKRecoveryJournal::OneTouchRecordDefault:
        m_modelData->setOneTouchRecordDefault(state() != 0);
        return true;
    case TVKRecoveryJournal::HardwareStyle:
        if (auto* corvaneModel = dynamic_cast<CorvaneModelData*>(m_modelData.get()))
            corvaneModel->setHardwareStyle(int(state()));
        return true;
    default:
        return applyConfigurationMessage(*m_modelData, id, body, editedKeyset, reason);
    }
}

void TVKController::awakeFromNib()
{
    readStoredModel();
    getGlobalDefaults();
    replayJournal();

    storeSelection(TVKSelection{});
    setSelectedKeyset(0);
    setSelectedLayer(0);

    m_messenger = makeMessenger();
    if (m_messenger) {
        m_messenger->setSendObserver(
            [this](corvane::MessageID id, const QByteArray& body) { journal(id, body); });
        connect(m_messenger.get(), &TVK_CarbonCocoaMessenger::serviceReturned, this,
                &TVKController::bringServiceInStep);
        // A service found is asked about its surface at once, not at the next poll.
        connect(m_messenger.get(), &TVK_CarbonCocoaMessenger::serviceReturned, this, [this] {
            if (m_pollTimer && m_pollTimer->isActive())
                m_pollTimer->start(0);
            refreshConnectionIndicator();
        });
        connect(m_messenger.get(), &TVK_CarbonCocoaMessenger::serviceRespondingChanged, this,
                [this](bool responding) {
                    corvane::log(responding ? QStringLiteral("the background service answers again")
                                            : QStringLiteral("the background service does not "
                                                             "respond; it is not waited on"));
                    // Answering again, it is asked at once instead of at the end of a back-off.
                    if (responding && m_pollTimer && m_pollTimer->isActive()) {
                        m_pollIntervalMs = 1000;
                        m_pollTimer->start(0);
                    }
                    refreshConnectionIndicator();
                    validateMenuItems();
                });
        // The service's current selection is taken as it stands: nothing is announced or sent.
        // What this configuration does not have is refused and the start-up's selection kept.
        qint64 keyset = 0;
        qint64 layer = 0;
        qint64 group = 0;
        qint64 control = 0;
        m_messenger->requestKeyset(keyset, layer, group, control);
        if (m_modelData && layerAt(keyset, layer)) {
            m_modelData->setSelectedKeysetIndex(int(keyset));
            m_modelData->setSelectedLayerIndex(int(layer));
            if (controlExists(group, control)) {
                m_modelData->setSelectedGroupIndex(int(group));
                m_modelData->setSelectedControlIndex(int(control));
            }
        } else if (m_modelData) {
            corvane::log(QStringLiteral("refused the service's current control: no keyset %1, "
                                        "layer %2 here")
                             .arg(keyset)
                             .arg(layer));
        }
    }
    if (m_modelData)
        showKeysetNameAndIcon();
    registerForNotifications();
    m_amIAwake = true;
    if (m_isWindowAwake)
        windowAndControllerAwake(true);
}

void TVKController::windowAndControllerAwake(bool secondInspector)
{
    notifyWithMessage(note::SelectedKeysetChange{});
    notifyOfRemoteControlChange(selectedControl(), selectedGroup(), true);
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
    // An alert can be ended by the program ending; what is left is not shown then.
    for (const TVKAlert& alert : std::exchange(m_startupNotices, {})) {
        if (m_terminated)
            break;
        m_views.dialogs->runAlert(alert);
    }
}

void TVKController::installIfNeeded()
{
    // Ended while an alert of the start-up was up: the installation waits for the next start.
    if (m_terminated)
        return;
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
        // Chosen from the menu, the check says what it found rather than nothing. Everything in
        // place but no service running: what is missing is the service, and it is started.
        if (serviceState() == TVKServiceState::NoService) {
            if (startBackgroundService(true)) {
                m_views.dialogs->runAlert(
                    {tr("The %1 components are installed and current.")
                         .arg(controllerName().applicationName),
                     tr("The background service was not running; it has been started."),
                     {tr("OK")}});
            }
            checkConnection();
            getGlobalDefaults();
            return;
        }
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
    m_defaults->setObject(key::ModelData, std::move(dict));
    if (m_journal && m_journal->isOpen())
        m_defaults->setObject(key::JournalEpoch, PlistValue(QString::number(m_journal->epoch())));
    QString error;
    const bool stored = m_defaults->synchronize(&error);
    if (stored)
        m_storedConfiguration = written;
    else
        corvane::log(QStringLiteral("the configuration could not be saved: %1").arg(error));
    saveGlobalDefaults();
    // Only a written store makes the journal's records redundant.
    if (stored)
        journalEmptied();
    return stored;
}

// --- Selection ---------------------------------------------------------------------------------

TVKKeyset* TVKController::keysetAt(qint64 index) const
{
    if (!m_modelData || index < 0 || index >= m_modelData->numberOfKeysets())
        return nullptr;
    return m_modelData->keysetAtIndex(int(index));
}

void TVKController::showKeysetNameAndIcon()
{
    const TVKKeyset* keyset = m_modelData ? m_modelData->selectedKeyset() : nullptr;
    m_views.windows->showKeysetName(keyset ? keyset->name() : QString());
    setIconForKeyset(keyset);
}

TVKSelection TVKController::selection() const
{
    return m_modelData ? m_modelData->selection() : TVKSelection{};
}

qint64 TVKController::selectedGroup() const
{
    const TVKSelection current = selection();
    qint64 group = 0;
    qint64 control = 0;
    toOnscreen(current.group, current.control, group, control);
    return group;
}

qint64 TVKController::selectedControl() const
{
    const TVKSelection current = selection();
    qint64 group = 0;
    qint64 control = 0;
    toOnscreen(current.group, current.control, group, control);
    return control;
}

bool TVKController::controlExists(qint64 group, qint64 control) const
{
    // The layer is the authority: the NV's banked groups hold more controls than one bank draws.
    const TVKKeyset* keyset = keysetAt(selectedKeyset());
    const TVKLayer* layer = keyset ? keyset->layerAtIndex(int(selectedLayer())) : nullptr;
    if (!layer || group < 0 || group >= qint64(layer->groups().size()) ||
        group >= layer->numGroups())
        return false;
    return control >= 0 && control < qint64(layer->groups()[size_t(group)].size());
}

bool TVKController::onscreenToModel(qint64 group, qint64 control, int& dataGroup,
                                    int& dataControl) const
{
    if (!m_constantServer)
        return false;
    int g = 0;
    int c = 0;
    if (!m_constantServer->onscreenGroup(int(group), int(control), g, c) || !controlExists(g, c))
        return false;
    // A group drawn in two clusters has each control in one of them only; a group drawn a
    // second time (the TLW's function keys) holds every control it reaches.
    if (!m_constantServer->onscreenControlsInGroup(int(group)).contains(int(control)))
        return false;
    dataGroup = g;
    dataControl = c;
    return true;
}

void TVKController::storeSelection(const TVKSelection& next)
{
    if (!m_modelData)
        return;
    const qint64 previousGroup = selectedGroup();
    m_modelData->setSelection(next);
    if (selectedGroup() != previousGroup)
        notifyWithMessage(note::SelectedGroupChange{});
}

void TVKController::selectControl(int group, int control)
{
    TVKSelection next = selection();
    next.group = group;
    next.control = control;
    next.displaySelected = false;
    storeSelection(next);
}

bool TVKController::isSelectedControl(const TVKControl* control) const
{
    return m_modelData && control && !displaySelected() &&
           m_modelData->selectedControl() == control;
}

void TVKController::announceSelection()
{
    const TVKSelection current = selection();
    if (current.displaySelected)
        notifyOfDisplaySelection(current.display, current.displayGroup);
    else
        notifyOfControlChange(selectedControl(), selectedGroup());
}

void TVKController::selectKeysetAndLayer(qint64 keyset, qint64 layer)
{
    if (keyset != selectedKeyset())
        setSelectedKeyset(keyset);
    if (layer != selectedLayer()) {
        setSelectedLayer(layer);
        notifyWithMessage(note::SelectedLayerChange{});
    }
}

void TVKController::setSelectedKeyset(qint64 index)
{
    if (m_modelData)
        m_modelData->setSelectedKeysetIndex(int(index));
    notifyWithMessage(note::SelectedKeysetChange{});
    announceSelection();
    showKeysetNameAndIcon();
    if (m_messenger)
        m_messenger->sendChangeEditKeysetMessage(index);
    const TVKKeyset* keyset = m_modelData ? m_modelData->selectedKeyset() : nullptr;
    setKeysetLockState(keyset && keyset->locked());
}

void TVKController::setSelectedLayer(qint64 index)
{
    if (m_modelData)
        m_modelData->setSelectedLayerIndex(int(index));
    if (m_messenger)
        m_messenger->sendChangeEditLayerMessage(index);
}

void TVKController::setSelectedGroup(qint64 group)
{
    if (group == selectedGroup())
        return;
    int dataGroup = 0;
    int dataControl = 0;
    bool found = onscreenToModel(group, selectedControl(), dataGroup, dataControl);
    // Any group of the surface has fewer controls than this.
    constexpr qint64 kMostControls = 256;
    for (qint64 control = 0; !found && control < kMostControls; ++control)
        found = onscreenToModel(group, control, dataGroup, dataControl);
    if (found)
        selectControl(dataGroup, dataControl);
}

void TVKController::setSelectedControl(qint64 control)
{
    int dataGroup = 0;
    int dataControl = 0;
    if (onscreenToModel(selectedGroup(), control, dataGroup, dataControl))
        selectControl(dataGroup, dataControl);
}

void TVKController::setSelectedDisplay(qint64 display, qint64 group)
{
    const TVKSelection before = selection();
    TVKSelection next = before;
    next.display = int(display);
    next.displayGroup = int(group);
    next.displaySelected = true;
    storeSelection(next);
    // No control is selected any more: the surface darkens the one it lit.
    if (m_modelData && !before.displaySelected && m_messenger)
        m_messenger->sendControlStateMessage(0, before.group, before.control, 0);
}

void TVKController::selectedDisplay(qint64& display, qint64& group) const
{
    display = selection().display;
    group = selection().displayGroup;
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
    announceSelection();
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
    const TVKSelection before = selection();
    int dataGroup = 0;
    int dataControl = 0;
    if (!onscreenToModel(group, control, dataGroup, dataControl))
        return;
    if (!before.displaySelected && before.group == dataGroup && before.control == dataControl)
        return;
    selectControl(dataGroup, dataControl);
    notifyOfControlChange(control, group);
    updateHardwareControlsPreviousGroup(before.group, before.control, dataGroup, dataControl);
}

void TVKController::handleMultiStateTVKButton(qint64 group, qint64 state, qint64 control)
{
    // A click between the controls selects nothing.
    if (state == 0 || control < 0)
        return;
    handleTVKControl(control, group);
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
    notifyOfControlChange(control, group, selectedLayer());
}

void TVKController::notifyOfControlChange(qint64 control, qint64 group, qint64 layer)
{
    TVKControl* selected = m_modelData ? m_modelData->selectedControl() : nullptr;
    notifyWithMessage(note::SelectionChange{group, control, layer, selected});
}

void TVKController::notifyOfDisplaySelection(qint64 display, qint64 group)
{
    notifyOfDisplaySelection(display, group, selectedLayer());
}

void TVKController::notifyOfDisplaySelection(qint64 display, qint64 group, qint64 layer)
{
    TVKControl* object = m_modelData
                             ? m_modelData->displayForKeyset(int(selectedKeyset()), int(layer),
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
            object = m_modelData->controlForKeyset(int(selectedKeyset()), int(selectedLayer()),
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
