// The two sheets of the main window: the surface's address and port (with the surface family's
// settings), and the per-keyset application port.
#include "app/TVKController.h"
#include "core/Log.h"
#include "core/NetworkFields.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"
#include "platform/PortProbe.h"
#include "service/TVK_PrivateMessenger.h"

namespace {

constexpr quint16 kHighestPort = 65534;
constexpr quint16 kLowestDynamicPort = 49152;
constexpr int kProbeTimeoutMs = 500;

} // namespace

QString TVKController::ipAddress() const
{
    return m_modelData ? m_modelData->ipAddress() : QString();
}

void TVKController::setIpAddress(const QString& address)
{
    if (m_modelData)
        m_modelData->setIpAddress(address);
}

uint TVKController::ethernetPort() const
{
    return m_modelData ? m_modelData->ethernetPort() : 0;
}

void TVKController::setEthernetPort(uint port)
{
    if (m_modelData)
        m_modelData->setEthernetPort(port);
}

void TVKController::showPreferencePanel()
{
    setupPreferencePanel();
    m_views.sheets->beginSheet(TVKSheet::Preferences);
}

void TVKController::setupPreferencePanel()
{
    corvane::log(QStringLiteral("TVKController subclasses must override setupPreferencePanel!"));
}

QString TVKController::nextFieldFromIpAddress(const QString& text, qsizetype& position)
{
    if (position < 0 || position >= text.size())
        return QString();
    qsizetype end = position;
    while (end < text.size() && end - position < 3 && text.at(end) >= QLatin1Char('0') &&
           text.at(end) <= QLatin1Char('9'))
        ++end;
    if (end == position)
        return QString();
    const QString part = text.mid(position, end - position);
    position = end;
    return part;
}

void TVKController::setupEthernetPreferences()
{
    const QString address = ipAddress();
    qsizetype position = 0;
    for (QString& field : m_preferenceFields.ipAddress) {
        field = nextFieldFromIpAddress(address, position);
        ++position; // past the dot
    }
    m_preferenceFields.ethernetPort = QString::asprintf("%d", int(ethernetPort()));
}

void TVKController::okPrefsWindow()
{
    if (validatePreferences())
        prefsDidEnd(1);
}

void TVKController::cancelPrefsWindow()
{
    prefsDidEnd(0);
}

void TVKController::prefsDidEnd(int returnCode)
{
    m_views.sheets->endSheet(TVKSheet::Preferences);
    if (returnCode == 1)
        collectPreferences();
}

bool TVKController::validatePreferences()
{
    corvane::log(QStringLiteral("TVKController subclasses must override validatePreferences!"));
    return false;
}

bool TVKController::validateTextField(TVKSheetField field)
{
    // A field is valid when it holds what it means: an address part of 0 to 255, a port of 1 to
    // 65535. Anything else is never stored nor sent to the service.
    const QString* text = nullptr;
    bool port = false;
    switch (field) {
    case TVKSheetField::IpAddress0:
    case TVKSheetField::IpAddress1:
    case TVKSheetField::IpAddress2:
    case TVKSheetField::IpAddress3:
        text = &m_preferenceFields.ipAddress[size_t(int(field) - int(TVKSheetField::IpAddress0))];
        break;
    case TVKSheetField::EthernetPort:
        text = &m_preferenceFields.ethernetPort;
        port = true;
        break;
    case TVKSheetField::ApplicationPort:
        text = &m_appPortFields.port;
        port = true;
        break;
    }
    if (text) {
        const QString trimmed = text->trimmed();
        if (port ? corvane::portValue(trimmed).has_value()
                 : corvane::addressPartValue(trimmed).has_value())
            return true;
    }
    m_views.sheets->selectFieldText(field);
    return false;
}

bool TVKController::validateEthernetPreferences()
{
    for (const TVKSheetField field :
         {TVKSheetField::IpAddress0, TVKSheetField::IpAddress1, TVKSheetField::IpAddress2,
          TVKSheetField::IpAddress3, TVKSheetField::EthernetPort}) {
        if (!validateTextField(field))
            return false;
    }
    return true;
}

void TVKController::collectPreferences()
{
    corvane::log(QStringLiteral("TVKController subclasses must override collectPreferences!"));
}

void TVKController::collectEthernetPreferences()
{
    const uint port = m_preferenceFields.ethernetPort.trimmed().toUInt();
    const std::array<QString, 4>& parts = m_preferenceFields.ipAddress;
    const QString address =
        QStringLiteral("%1.%2.%3.%4")
            .arg(parts[0].trimmed(), parts[1].trimmed(), parts[2].trimmed(), parts[3].trimmed());
    setEthernetPort(port);
    setIpAddress(address);
    if (m_messenger)
        m_messenger->sendResetSocketMessage(address, port);
}

void TVKController::showAppPortPanel()
{
    const TVKKeyset* keyset = keysetAt(selectedKeyset());
    if (!keyset)
        return;
    m_appPortFields.cellTitles = {
        tr("The application %1 will connect\nto the Corvane via ethernet on this port:")
            .arg(keyset->name()),
        tr("The application %1 will not\nconnect to the Corvane via ethernet").arg(keyset->name())};
    const bool viaEthernet = keyset->connectViaEthernet();
    m_appPortFields.cellStates = {viaEthernet, !viaEthernet};
    m_appPortFields.selectedCell = viaEthernet ? 0 : 1;
    m_appPortFields.port =
        QString::asprintf("%lu", static_cast<unsigned long>(keyset->ethernetPort()));
    m_views.sheets->beginSheet(TVKSheet::ApplicationPort);
}

void TVKController::okAppPortWindow()
{
    // The port is taken only with Ethernet on; without it the keyset keeps the port it has.
    const bool complete = m_appPortFields.selectedCell == 0
                              ? validateTextField(TVKSheetField::ApplicationPort)
                              : !m_appPortFields.port.trimmed().isEmpty();
    if (complete)
        appPortDidEnd(1);
}

void TVKController::cancelAppPortWindow()
{
    appPortDidEnd(0);
}

void TVKController::appPortDidEnd(int returnCode)
{
    m_views.sheets->endSheet(TVKSheet::ApplicationPort);
    if (returnCode != 1)
        return;
    TVKKeyset* keyset = keysetAt(selectedKeyset());
    if (!keyset)
        return;
    const bool viaEthernet = m_appPortFields.selectedCell == 0;
    keyset->setConnectViaEthernet(viaEthernet);
    if (viaEthernet) {
        const uint port = m_appPortFields.port.trimmed().toUInt();
        keyset->setEthernetPort(port);
        if (m_messenger)
            m_messenger->updateProperty(TVK_PrivateMessenger::EthernetPortProperty, qint64(port),
                                        int(selectedKeyset()));
    } else if (m_messenger) {
        // All bits set: no port; the keyset keeps the one it had.
        m_messenger->updateProperty(TVK_PrivateMessenger::EthernetPortProperty, -1,
                                    int(selectedKeyset()));
    }
    writeDataToDefaults();
}

void TVKController::findAvailablePort()
{
    if (!m_modelData)
        return;
    for (quint32 port = kHighestPort; port >= kLowestDynamicPort; --port) {
        if (corvane::PortProbe::isListening(quint16(port), kProbeTimeoutMs))
            continue;
        const int user = m_modelData->appPortInUse(port);
        if (user == -1 || user == selectedKeyset()) {
            m_appPortFields.port = QString::number(port);
            appPortChanged();
            return;
        }
    }
}

void TVKController::appPortChanged()
{
    m_appPortFields.cellStates = {true, false};
    m_appPortFields.selectedCell = 0;
    m_views.sheets->refreshSheet(TVKSheet::ApplicationPort);
}
