// The controller's side of the conversation with the service: the three messages it sends us,
// and the loop that learns whether the surface is connected.
#include "app/TVKController.h"
#include "core/Log.h"
#include "core/Notifications.h"
#include "model/TVKModelData.h"
#include "service/MessagePort.h"
#include "service/TVK_PrivateMessenger.h"
#include "surface/TVK_Constant_Server.h"

#include <QAction>
#include <QCoreApplication>
#include <QIcon>
#include <QPixmap>
#include <QTimer>

namespace note = corvane::note;

namespace {

constexpr int kPollIntervalMs = 1000;
constexpr int kKeepAliveIntervalMs = 1500;

} // namespace

void TVKController::hardwareControlChangeForGroup(qint64 group, qint64 control, qint64,
                                                  qint64 value)
{
    // The release of a control does not move the selection.
    if (value == 0 || !m_constantServer)
        return;
    if (!controlExists(group, control)) {
        corvane::log(QStringLiteral("the service touched a control the surface does not have: "
                                    "group %1, control %2")
                         .arg(group)
                         .arg(control));
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
    setSelectedKeyset(keyset);
    setSelectedLayer(layer);
    if (controlExists(group, control))
        selectControl(int(group), int(control));
    showKeysetNameAndIcon();
    notifyWithMessage(note::SelectedKeysetChange{});
    notifyOfRemoteControlChange(selectedControl(), selectedGroup(), true);
    validateMenuItems();
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
    if (m_connected) {
        updateConnectionMenu(true);
        QTimer::singleShot(kKeepAliveIntervalMs, this, [this] { keepConnectionAlive(); });
        changed = !previous;
    } else {
        QTimer::singleShot(kPollIntervalMs, this, [this] { deferedCheckConnection(); });
        changed = previous;
    }
    if (changed) {
        // Never inside the check itself: after the current event has finished.
        QMetaObject::invokeMethod(
            this, [this] { handleConnectionStateChange(m_connected); }, Qt::QueuedConnection);
    }
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
        QTimer::singleShot(kKeepAliveIntervalMs, this, [this] { keepConnectionAlive(); });
        return;
    }
    m_messenger->restartRemotePort();
    checkConnection();
}

void TVKController::updateConnectionMenu(bool connected)
{
    if (!m_connectionMenu)
        return;
    const QImage& image = connected ? m_connectedImage : m_notConnectedImage;
    if (!image.isNull())
        m_connectionMenu->setIcon(QIcon(QPixmap::fromImage(image)));
    if (m_connectionMenuItem) {
        // Looked up by key, so that a translation can replace the defaults.
        m_connectionMenuItem->setText(
            connected
                ? QCoreApplication::translate("InfoPlist", "(connected)", "TVKConnectedString")
                : QCoreApplication::translate("InfoPlist", "reconnect", "TVKNotConnectedString"));
        m_connectionMenuItem->setEnabled(!connected);
    }
}

void TVKController::attemptReconnect()
{
    if (m_messenger)
        tellServiceUnjournaled(
            [&] { m_messenger->sendResetSocketMessage(ipAddress(), ethernetPort()); });
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
