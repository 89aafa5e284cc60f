#include "service/TVK_CarbonCocoaMessenger.h"

#include "service/MessageCatalogue.h"
#include "service/TVKMessengerDelegate.h"
#include "service/TVK_MessageSpecs.h"

#include <QTimer>
#include <utility>

using corvane::MessageID;

namespace {

TVK_CarbonCocoaMessenger* s_defaultMessenger = nullptr;

// The port's receive function has no object of its own: it reaches whichever messenger is the
// shared one at the time, and answers nothing when there is none.
QByteArray messagePortCallback(corvane::LocalMessagePort* port, const corvane::MessageFrame& frame)
{
    TVK_CarbonCocoaMessenger* messenger = TVK_CarbonCocoaMessenger::defaultTVKMessenger();
    if (!messenger)
        return QByteArray();
    return messenger->MessageCallbackForPort(port, frame.code, frame.body, nullptr);
}

} // namespace

TVK_CarbonCocoaMessenger::TVK_CarbonCocoaMessenger(corvane::FourCharCode localID,
                                                   const QString& remotePortName,
                                                   TVKMessengerDelegate* owner)
    : m_localID(localID), m_delegate(owner), m_remotePortName(remotePortName)
{
    s_defaultMessenger = this;

    const QString localName =
        QStringLiteral("TVK_MessagePort_%1").arg(corvane::stringFromFourCharCode(m_localID));
    m_localPort = corvane::LocalMessagePort::create(localName, &messagePortCallback);
    if (m_localPort) {
        connect(m_localPort.get(), &corvane::LocalMessagePort::invalidated, this,
                [this] { invalidationCallbackForPort(m_localPort.get(), nullptr); });
    }
    // Without a local port (another copy of the program holds the name) the messenger still
    // finds the service and can send, but never receives. When the service is already there,
    // the lookup announces this program and the call below announces it a second time; the
    // service takes both.
    makeRemotePort();
    sendConnectMessage();
}

TVK_CarbonCocoaMessenger::~TVK_CarbonCocoaMessenger()
{
    if (s_defaultMessenger == this)
        s_defaultMessenger = nullptr;
    if (m_localPort)
        m_localPort->disconnect(this);
    m_localPort.reset();
    // The service's port is released, not invalidated: it is the service's.
    m_remotePort.reset();
}

TVK_CarbonCocoaMessenger* TVK_CarbonCocoaMessenger::defaultTVKMessenger()
{
    return s_defaultMessenger;
}

void TVK_CarbonCocoaMessenger::makeRemotePort()
{
    m_remotePort = corvane::RemoteMessagePort::create(m_remotePortName);
    if (!m_remotePort) {
        // Looks again every 0.2 s for as long as the service's port does not exist.
        auto* timer = new QTimer(this);
        timer->setSingleShot(true);
        connect(timer, &QTimer::timeout, this, [this, timer] {
            deferedMakeRemotePort(timer);
            timer->deleteLater();
        });
        timer->start(RemoteLookupRetryMs);
        m_serviceAway = true;
        return;
    }
    connect(m_remotePort.get(), &corvane::RemoteMessagePort::respondingChanged, this,
            &TVK_CarbonCocoaMessenger::serviceRespondingChanged, Qt::QueuedConnection);
    sendConnectMessage();
    if (std::exchange(m_serviceAway, false))
        Q_EMIT serviceReturned();
}

void TVK_CarbonCocoaMessenger::deferedMakeRemotePort(QTimer*)
{
    makeRemotePort();
}

void TVK_CarbonCocoaMessenger::restartRemotePort()
{
    // A service still there when its port is dropped is the one found again; one that is gone
    // is replaced by whichever starts next.
    if (!isRemotePortValid())
        m_serviceAway = true;
    if (m_remotePort) {
        m_remotePort->invalidate();
        m_remotePort.reset();
    }
    makeRemotePort();
}

bool TVK_CarbonCocoaMessenger::isLocalPortValid() const
{
    return m_localPort && m_localPort->isValid();
}

bool TVK_CarbonCocoaMessenger::isRemotePortValid() const
{
    return m_remotePort && m_remotePort->isValid();
}

bool TVK_CarbonCocoaMessenger::isServiceResponding() const
{
    return !m_remotePort || m_remotePort->isResponding();
}

bool TVK_CarbonCocoaMessenger::doesRemotePortExist() const
{
    return m_remotePort != nullptr;
}

bool TVK_CarbonCocoaMessenger::sendMessageWithId(MessageID msgid, const QByteArray& data)
{
    if (m_sendObserver)
        m_sendObserver(msgid, data);
    if (!isRemotePortValid())
        return false;
    return m_remotePort->send(msgid, data, SendTimeoutMs) ==
           corvane::RemoteMessagePort::Status::Success;
}

bool TVK_CarbonCocoaMessenger::sendRequestWithId(MessageID msgid, QByteArray& returnData)
{
    if (!isRemotePortValid())
        return false;
    // The port may be replaced by a message served during the wait.
    const std::shared_ptr<corvane::RemoteMessagePort> port = m_remotePort;
    QByteArray reply;
    if (port->sendRequest(msgid, {}, SendTimeoutMs, ReceiveTimeoutMs, reply) !=
        corvane::RemoteMessagePort::Status::Success)
        return false;
    returnData = reply;
    return true;
}

bool TVK_CarbonCocoaMessenger::sendConnectMessage()
{
    return sendMessageWithId(corvane::msg::MPCn, TVK_PortConnectDisconnectSpec(m_localID).data());
}

bool TVK_CarbonCocoaMessenger::sendControlStateMessage(qint64 value, qint64 group, qint64 control,
                                                       qint64 axis)
{
    const TVK_OutgoingControlStateSpec body{std::uint32_t(group), std::uint32_t(control),
                                            std::uint32_t(axis), std::uint32_t(value)};
    return sendMessageWithId(corvane::msg::TCtl, body.data());
}

bool TVK_CarbonCocoaMessenger::sendChangeFrameletBankMessage(qint64 bank)
{
    return sendMessageWithId(corvane::msg::TFBk, TVK_OneIntSpec(std::uint32_t(bank)).data());
}

bool TVK_CarbonCocoaMessenger::sendChangeFrameletParamBankMessage(qint64 bank)
{
    return sendMessageWithId(corvane::msg::TFPB, TVK_OneIntSpec(std::uint32_t(bank)).data());
}

bool TVK_CarbonCocoaMessenger::sendChangeFrameletActionBankMessage(qint64 bank)
{
    return sendMessageWithId(corvane::msg::TFAB, TVK_OneIntSpec(std::uint32_t(bank)).data());
}

QByteArray TVK_CarbonCocoaMessenger::MessageCallbackForPort(corvane::LocalMessagePort*,
                                                            MessageID message,
                                                            const QByteArray& data, void*)
{
    if (message == corvane::msg::TCtl) {
        const TVK_IncomingControlStateSpec state(data);
        if (m_delegate)
            m_delegate->hardwareControlChangeForGroup(
                state.groupIndex(), state.controlNumOrChannel(), state.axis(), state.value());
    }
    return QByteArray();
}

void TVK_CarbonCocoaMessenger::invalidationCallbackForPort(corvane::LocalMessagePort*, void*) {}
