// The controller's side of the conversation with the service: the three messages it sends us,
// and the loop that learns whether the surface is connected.
#include "app/TVKController.h"
#include "app/TVKRecoveryJournal.h"
#include "core/Log.h"
#include "core/Notifications.h"
#include "core/StoredKeys.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "platform/InstallPlatform.h"
#include "service/MessagePort.h"
#include "service/TVK_PrivateMessenger.h"
#include "surface/TVK_Constant_Server.h"

#include <QAction>
#include <QCoreApplication>
#include <QFileInfo>
#include <QIcon>
#include <QPixmap>
#include <QScopedValueRollback>
#include <QTimer>
#include <algorithm>

namespace note = corvane::note;

namespace {

constexpr int kPollIntervalMs = 1000;
constexpr int kKeepAliveIntervalMs = 1500;
constexpr int kLongestPollIntervalMs = 10000;
// How long a service just started has to open its port before the user is told it did not.
constexpr int kServiceStartWaitMs = 5000;

using corvane::PlistValue;
namespace key = corvane::key;

// One keyset message that takes the service's list one step towards the application's.
struct KeysetStep
{
    enum Kind
    {
        Update,
        Add,
        Delete
    };
    Kind kind;
    int index;  // where in the service's list, when the step is sent
    int keyset; // the application's keyset that goes there (Update and Add)
};

// The fewest keyset messages that turn the stored list into the current one. Keysets that are
// the same in both are left alone wherever they moved to, so deleting one keyset of many costs
// one message, not an update of every keyset after it. The steps run from the end of the list
// to its start: the part before each step is still as stored, so its index is the stored one.
std::vector<KeysetStep> keysetSteps(const PlistValue& stored, const PlistValue& current)
{
    const int storedCount = int(stored.size());
    const int currentCount = int(current.size());
    // Most catch-ups follow a few edits: the unchanged ends are set aside before the alignment.
    int head = 0;
    while (head < storedCount && head < currentCount && stored.at(head) == current.at(head))
        ++head;
    int tail = 0;
    while (tail < storedCount - head && tail < currentCount - head &&
           stored.at(storedCount - 1 - tail) == current.at(currentCount - 1 - tail))
        ++tail;
    const int rows = storedCount - head - tail;
    const int columns = currentCount - head - tail;

    // cost[i][j]: steps that turn the first i of the stored middle into the first j of the
    // current one.
    const auto at = [columns](int i, int j) {
        return std::size_t(i) * std::size_t(columns + 1) + std::size_t(j);
    };
    std::vector<int> cost(std::size_t(rows + 1) * std::size_t(columns + 1));
    std::vector<char> same(std::size_t(rows + 1) * std::size_t(columns + 1), 0);
    for (int i = 0; i <= rows; ++i) {
        for (int j = 0; j <= columns; ++j) {
            if (i == 0 || j == 0) {
                cost[at(i, j)] = i + j;
                continue;
            }
            same[at(i, j)] = stored.at(head + i - 1) == current.at(head + j - 1);
            cost[at(i, j)] = std::min({cost[at(i - 1, j - 1)] + (same[at(i, j)] ? 0 : 1),
                                       cost[at(i - 1, j)] + 1, cost[at(i, j - 1)] + 1});
        }
    }
    std::vector<KeysetStep> steps;
    int i = rows;
    int j = columns;
    while (i > 0 || j > 0) {
        if (i > 0 && j > 0 && cost[at(i, j)] == cost[at(i - 1, j - 1)] + (same[at(i, j)] ? 0 : 1)) {
            if (!same[at(i, j)])
                steps.push_back({KeysetStep::Update, head + i - 1, head + j - 1});
            --i;
            --j;
        } else if (i > 0 && cost[at(i, j)] == cost[at(i - 1, j)] + 1) {
            steps.push_back({KeysetStep::Delete, head + i - 1, -1});
            --i;
        } else {
            steps.push_back({KeysetStep::Add, head + i, head + j - 1});
            --j;
        }
    }
    return steps;
}

bool sameOwner(const PlistValue& stored, const PlistValue& current)
{
    for (const QString& name : {key::HasOwnerKS, key::OwnKSBID, key::OwnKSSig}) {
        if (stored.value(name) != current.value(name))
            return false;
    }
    return true;
}

} // namespace

void TVKController::hardwareControlChangeForGroup(qint64 group, qint64 control, qint64,
                                                  qint64 value)
{
    // The release of a control does not move the selection.
    if (value == 0 || !m_constantServer)
        return;
    if (!hasControl(selectedKeyset(), selectedLayer(), group, control)) {
        corvane::log(QStringLiteral("refused a touch from the service: no control %1 in group %2")
                         .arg(control)
                         .arg(group));
        return;
    }
    const TVKSelection before = selection();
    if (!before.displaySelected && before.group == group && before.control == control)
        return;
    selectControl(int(group), int(control));
    notifyOfRemoteControlChange(selectedControl(), selectedGroup(), true);
    updateHardwareControlsPreviousGroup(before.group, before.control, group, control);
}

void TVKController::handleCurrentControlInfoForKeyset(qint64 keyset, qint64 layer, qint64 group,
                                                      qint64 control)
{
    if (!hasControl(keyset, layer, group, control)) {
        corvane::log(QStringLiteral("refused the service's current control: no keyset %1, "
                                    "layer %2, group %3, control %4 here")
                         .arg(keyset)
                         .arg(layer)
                         .arg(group)
                         .arg(control));
        return;
    }
    setSelectedKeyset(keyset);
    setSelectedLayer(layer);
    if (controlExists(group, control))
        selectControl(int(group), int(control));
    showKeysetNameAndIcon();
    notifyWithMessage(note::SelectedKeysetChange{});
    notifyOfRemoteControlChange(selectedControl(), selectedGroup(), true);
    validateMenuItems();
}

const TVKLayer* TVKController::layerAt(qint64 keyset, qint64 layer) const
{
    const TVKKeyset* target = keysetAt(keyset);
    const int layers = m_constantServer ? m_constantServer->numLayers() : 0;
    return target && layer >= 0 && layer < layers ? target->layerAtIndex(int(layer)) : nullptr;
}

bool TVKController::hasControl(qint64 keyset, qint64 layer, qint64 group, qint64 control) const
{
    const TVKLayer* inLayer = layerAt(keyset, layer);
    return inLayer && inLayer->hasControl(group, control);
}

void TVKController::handleConnectionStateChange(bool connected)
{
    m_connected = connected;
    updateConnectionMenu(connected);
    validateMenuItems();
}

bool TVKController::checkConnection()
{
    const bool previous = m_connected;
    bool now = false;
    if (m_messenger)
        m_messenger->requestConnectStatus(now);
    m_connected = now;
    bool changed = false;
    if (!m_pollTimer) {
        // One chain of checks, however many callers start one.
        m_pollTimer = new QTimer(this);
        m_pollTimer->setSingleShot(true);
        connect(m_pollTimer, &QTimer::timeout, this, [this] { deferedCheckConnection(); });
    }
    if (m_connected) {
        m_pollIntervalMs = kPollIntervalMs;
        m_pollTimer->stop();
        updateConnectionMenu(true);
        QTimer::singleShot(kKeepAliveIntervalMs, this, [this] { keepConnectionAlive(); });
        changed = !previous;
    } else {
        // A service that does not answer holds the window for its time-out at every ask: it
        // is asked less and less often until it answers again.
        if (serviceState() == TVKServiceState::NotResponding)
            m_pollIntervalMs = std::min(m_pollIntervalMs * 2, kLongestPollIntervalMs);
        else
            m_pollIntervalMs = kPollIntervalMs;
        m_pollTimer->start(m_pollIntervalMs);
        changed = previous;
    }
    if (changed) {
        // Never inside the check itself: after the current event has finished.
        QMetaObject::invokeMethod(
            this, [this] { handleConnectionStateChange(m_connected); }, Qt::QueuedConnection);
    }
    // A service gone, back or silent changes the indicator even when the surface did not.
    refreshConnectionIndicator();
    return m_connected;
}

void TVKController::deferedCheckConnection()
{
    checkConnection();
}

void TVKController::keepConnectionAlive()
{
    if (!m_messenger || !m_messenger->doesRemotePortExist())
        return;
    if (m_messenger->isRemotePortValid()) {
        refreshConnectionIndicator();
        QTimer::singleShot(kKeepAliveIntervalMs, this, [this] { keepConnectionAlive(); });
        return;
    }
    m_messenger->restartRemotePort();
    checkConnection();
}

TVKServiceState TVKController::serviceState() const
{
    if (!m_messenger || !m_messenger->isRemotePortValid())
        return TVKServiceState::NoService;
    if (!m_messenger->isServiceResponding())
        return TVKServiceState::NotResponding;
    return m_connected ? TVKServiceState::SurfaceConnected : TVKServiceState::SurfaceNotReachable;
}

void TVKController::refreshConnectionIndicator()
{
    updateConnectionMenu(m_connected);
}

void TVKController::updateConnectionMenu(bool connected)
{
    if (!m_connectionMenu)
        return;
    // The flag is the surface's; whether a service answers at all is asked here.
    TVKServiceState state = serviceState();
    if (state == TVKServiceState::SurfaceConnected && !connected)
        state = TVKServiceState::SurfaceNotReachable;
    if (m_serviceStarting && state != TVKServiceState::NoService)
        m_serviceStarting = false;
    const std::pair shown{state, m_serviceStarting};
    if (m_shownServiceState == shown)
        return;
    m_shownServiceState = shown;

    const QIcon* image = state == TVKServiceState::SurfaceConnected      ? &m_connectedImage
                         : state == TVKServiceState::SurfaceNotReachable ? &m_notConnectedImage
                                                                         : &m_noServiceImage;
    const QString text = serviceStateText(state, m_serviceStarting);
    const QString why = serviceStateExplanation(state, m_serviceStarting);
    if (!image->isNull())
        m_connectionMenu->setIcon(*image);
    m_connectionMenu->setText(text);
    m_connectionMenu->setToolTip(why);
    m_connectionMenu->setStatusTip(why);
    if (m_connectionMenuItem) {
        // Looked up by key, so that a translation can replace the defaults.
        const bool surface = state == TVKServiceState::SurfaceConnected;
        m_connectionMenuItem->setText(
            surface
                ? QCoreApplication::translate("InfoPlist", "(connected)", "TVKConnectedString")
                : QCoreApplication::translate("InfoPlist", "reconnect", "TVKNotConnectedString"));
        m_connectionMenuItem->setEnabled(!surface);
        m_connectionMenuItem->setToolTip(why);
    }
    if (QAction* start = menuItem(TVKMenuCommand::StartBackgroundService))
        start->setEnabled(state == TVKServiceState::NoService && !m_serviceStarting);
}

QString TVKController::serviceStateText(TVKServiceState state, bool starting)
{
    switch (state) {
    case TVKServiceState::SurfaceConnected:
        return tr("Surface connected");
    case TVKServiceState::SurfaceNotReachable:
        return tr("Surface not reachable");
    case TVKServiceState::NoService:
        return starting ? tr("Starting the background service…") : tr("No background service");
    case TVKServiceState::NotResponding:
        return tr("Background service not responding");
    }
    return {};
}

QString TVKController::serviceStateExplanation(TVKServiceState state, bool starting)
{
    switch (state) {
    case TVKServiceState::SurfaceConnected:
        return tr("The background service is running and the surface is connected.");
    case TVKServiceState::SurfaceNotReachable:
        return tr("The background service is running but cannot reach the surface. Check that "
                  "the surface is switched on and plugged in, then choose reconnect.");
    case TVKServiceState::NoService:
        return starting ? tr("The background service has been started and should answer in a "
                             "moment.")
                        : tr("The background service is not running, so the surface does "
                             "nothing. Choose reconnect or Start Background Service to start it.");
    case TVKServiceState::NotResponding:
        return tr("The background service is running but does not answer. Corvane asks it again "
                  "every few seconds and keeps what it sends until the service reads again.");
    }
    return {};
}

void TVKController::attemptReconnect()
{
    switch (serviceState()) {
    case TVKServiceState::NoService:
        // Nobody to send it to: what reconnecting needs first is a service.
        startBackgroundService();
        return;
    case TVKServiceState::NotResponding:
        // Asked at once rather than at the end of the back-off; it waits for nothing.
        m_pollIntervalMs = kPollIntervalMs;
        if (m_pollTimer && m_pollTimer->isActive())
            m_pollTimer->start(0);
        break;
    default:
        break;
    }
    if (m_messenger)
        tellServiceUnjournaled(
            [&] { m_messenger->sendResetSocketMessage(ipAddress(), ethernetPort()); });
}

bool TVKController::startBackgroundService(bool restoreLoginItem)
{
    if (serviceState() != TVKServiceState::NoService)
        return true;
    namespace install = corvane::InstallPlatform;
    const TVKInstallationNames names = controllerName();
    // The launcher only passes the start on to the service in the support folder: a missing
    // service would fail there, unseen.
    const QString support =
        install::expandUserPath(QStringLiteral("~/Library/Application Support/Tavrik"));
    const QString service = support + u'/' + names.backgroundAppName;
    const std::optional<install::BundleInfo> bundle = install::readBundle(service);
    QString missing;
    if (names.backgroundAppName.isEmpty() || names.launcherAppID.isEmpty()) {
        missing = tr("This build of Corvane names no background service.");
    } else if (!bundle || bundle->executable.isEmpty()) {
        missing = tr("The background service “%1” is missing from “%2”.")
                      .arg(names.backgroundAppName, support);
    } else if (!QFileInfo(service + u'/' + bundle->executable).isExecutable()) {
        missing = tr("The background service's program “%1” is missing or not executable.")
                      .arg(service + u'/' + bundle->executable);
    }
    bool started = false;
    if (missing.isEmpty()) {
        const QString entry = install::autostartEntryPath(names.launcherAppID);
        if (restoreLoginItem && !QFileInfo::exists(entry)) {
            // Writing the entry starts the launcher, as logging in would.
            const QString launcher = install::applicationBundlePath() +
                                     QStringLiteral("/Contents/Library/LoginItems/") +
                                     names.launcherAppName;
            started = install::setLoginItemEnabled(names.launcherAppID, launcher, true);
            if (!started)
                missing = tr("The autostart entry “%1” is missing and could not be written "
                             "from “%2”.")
                              .arg(entry, launcher);
        } else {
            started = install::launchAutostartEntry(names.launcherAppID, &missing);
        }
    }
    if (!started) {
        corvane::log(QStringLiteral("the background service was not started: %1").arg(missing));
        const int answer = m_views.dialogs->runAlert(
            {tr("The background service cannot be started."),
             tr("%1\n\nChoose Install… to put the Corvane components in place.").arg(missing),
             {tr("Install…"), tr("Cancel")}});
        if (answer == 0 && !restoreLoginItem && !m_terminated)
            handleInstall();
        return false;
    }
    corvane::log(QStringLiteral("started the background service through its autostart entry"));
    m_serviceStarting = true;
    m_shownServiceState.reset();
    refreshConnectionIndicator();
    validateMenuItems();
    // Looked for at once rather than at the end of a back-off; the 0.2 s lookup finds its port.
    m_pollIntervalMs = kPollIntervalMs;
    if (m_pollTimer && m_pollTimer->isActive())
        m_pollTimer->start(kPollIntervalMs);
    QTimer::singleShot(kServiceStartWaitMs, this, [this] {
        if (!m_serviceStarting)
            return;
        m_serviceStarting = false;
        refreshConnectionIndicator();
        validateMenuItems();
        if (serviceState() != TVKServiceState::NoService || m_terminated)
            return;
        m_views.dialogs->runAlert(
            {tr("The background service did not start."),
             tr("Corvane started it through its autostart entry, but it has not opened its port "
                "within %1 seconds. The system log may say why.")
                 .arg(kServiceStartWaitMs / 1000),
             {tr("OK")}});
    });
    return true;
}

void TVKController::sendChangesSinceStored()
{
    PlistValue current = PlistValue::makeDict();
    m_modelData->writeTo(current);
    for (const KeysetStep& step :
         keysetSteps(m_storedConfiguration.value(key::Keysets), current.value(key::Keysets))) {
        switch (step.kind) {
        case KeysetStep::Update:
            m_messenger->sendUpdateKeysetMessage(step.index, keysetAt(step.keyset));
            break;
        case KeysetStep::Add:
            m_messenger->sendAddKeysetMessage(step.index, keysetAt(step.keyset));
            break;
        case KeysetStep::Delete:
            m_messenger->sendDeleteKeysetMessage(step.index);
            break;
        }
    }
    if (!sameOwner(m_storedConfiguration, current)) {
        m_messenger->sendOwnerKeysetChange(m_modelData->controlSurfaceHasOwnerKeyset(),
                                           m_modelData->ownerKeysetBundleID(),
                                           m_modelData->ownerKeysetSignature());
    }
}

void TVKController::bringServiceInStep()
{
    if (!m_messenger || !m_modelData)
        return;
    // Every edit of the user's goes into the recovery journal, and writing the store empties it:
    // an empty journal that has been writable all along means the keysets are as stored, and
    // they need not be written out and compared (most of a second with fifty keysets).
    const bool asStored = m_journal && m_journal->isOpen() && m_editsUnprotected.isEmpty() &&
                          m_journal->recordCount() == 0;
    tellServiceUnjournaled([&] {
        if (!asStored)
            sendChangesSinceStored();
        // A service knows nothing of what was selected here before it started.
        const TVKSelection now = selection();
        m_messenger->sendChangeEditKeysetMessage(now.keyset);
        m_messenger->sendChangeEditLayerMessage(now.layer);
        if (!now.displaySelected)
            m_messenger->sendControlStateMessage(1, now.group, now.control, 0);
    });
}

void TVKController::handleTVKLayerSelector(qint64 layer)
{
    if (layer == selectedLayer())
        return;
    setSelectedLayer(layer);
    announceSelection();
    notifyWithMessage(note::SelectedLayerChange{});
}

void TVKController::handleDisplay(qint64 display, qint64 group)
{
    setSelectedDisplay(display, group);
    notifyOfDisplaySelection(display, group);
}

void TVKController::handleTVKDisplay(qint64, qint64)
{
    corvane::log(QStringLiteral("override handleTVKDisplay"));
}
