#pragma once

#include "core/FourCharCode.h"
#include "service/MessageFrame.h"
#include "service/MessagePort.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>

class QTimer;
class TVKMessengerDelegate;

// Owns both ends of the link to the background service: the local port the service sends to
// ("TVK_MessagePort_" + the local ID's four characters) and the remote end of the service's own
// port. Sends one-way messages and requests with fixed time-outs and turns incoming messages
// into calls on its delegate. Everything runs on the main thread.
class TVK_CarbonCocoaMessenger : public QObject
{
    Q_OBJECT

public:
    static constexpr int SendTimeoutMs = 50;
    static constexpr int ReceiveTimeoutMs = 1000;
    static constexpr int RemoteLookupRetryMs = 200;

    TVK_CarbonCocoaMessenger(corvane::FourCharCode localID, const QString& remotePortName,
                             TVKMessengerDelegate* owner);
    ~TVK_CarbonCocoaMessenger() override;

    // The messenger made last; incoming messages reach a messenger only through it.
    static TVK_CarbonCocoaMessenger* defaultTVKMessenger();

    corvane::FourCharCode localID() const { return m_localID; }
    TVKMessengerDelegate* delegate() const { return m_delegate; }
    void setDelegate(TVKMessengerDelegate* delegate) { m_delegate = delegate; }
    corvane::LocalMessagePort* localPort() const { return m_localPort.get(); }
    corvane::RemoteMessagePort* remotePort() const { return m_remotePort.get(); }
    QString remotePortName() const { return m_remotePortName; }

    void makeRemotePort();
    void deferedMakeRemotePort(QTimer* timer);
    void restartRemotePort();

    bool isLocalPortValid() const;
    bool isRemotePortValid() const;
    bool doesRemotePortExist() const;
    // A service that left a request unanswered or stopped reading is not waited on until it
    // answers or reads again (RemoteMessagePort::isResponding); true without a service.
    bool isServiceResponding() const;

    // Sees every one-way message before it goes out, whether or not the service is there to
    // receive it: the application keeps its recovery journal from what it tells the service.
    using SendObserver = std::function<void(corvane::MessageID, const QByteArray&)>;
    void setSendObserver(SendObserver observer) { m_sendObserver = std::move(observer); }

    bool sendMessageWithId(corvane::MessageID msgid, const QByteArray& data);
    // On failure returnData is left untouched.
    bool sendRequestWithId(corvane::MessageID msgid, QByteArray& returnData);

    bool sendConnectMessage();
    bool sendControlStateMessage(qint64 value, qint64 group, qint64 control, qint64 axis);
    bool sendChangeFrameletBankMessage(qint64 bank);
    bool sendChangeFrameletParamBankMessage(qint64 bank);
    bool sendChangeFrameletActionBankMessage(qint64 bank);

    // Handles one incoming message and returns the reply (always empty here). Subclasses handle
    // their own IDs and pass the rest up.
    virtual QByteArray MessageCallbackForPort(corvane::LocalMessagePort* port,
                                              corvane::MessageID message, const QByteArray& data,
                                              void* info);
    virtual void invalidationCallbackForPort(corvane::LocalMessagePort* port, void* info);

Q_SIGNALS:
    // A service was found after a time without one (it was not there yet, or it went away):
    // that service knows only what it read at its own start, not what was said to the last one.
    void serviceReturned();
    // The service stopped answering, or answers again. Delivered after the event that noticed
    // it, never inside a send.
    void serviceRespondingChanged(bool responding);

private:
    corvane::FourCharCode m_localID;
    TVKMessengerDelegate* m_delegate;
    std::unique_ptr<corvane::LocalMessagePort> m_localPort;
    std::shared_ptr<corvane::RemoteMessagePort> m_remotePort;
    QString m_remotePortName;
    SendObserver m_sendObserver;
    // Set while no live service is held, so that the next one found is announced.
    bool m_serviceAway = false;
};
