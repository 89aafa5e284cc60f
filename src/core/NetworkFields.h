#pragma once

#include <QString>
#include <QStringView>
#include <array>
#include <optional>

// What the address and port fields accept, wherever they are edited: the first-run page, the
// preference sheet and the application-port sheet, and the controller before it stores a value
// or sends it to the service.
namespace corvane {

// One part of a dotted IPv4 address: one to three ASCII digits, 0 to 255 ("001" is 1).
std::optional<int> addressPartValue(QStringView text);

// A TCP port: one to five ASCII digits, 1 to 65535.
std::optional<quint16> portValue(QStringView text);

// The four parts of a whole dotted IPv4 address ("192.168.1.250", blanks around it allowed), each
// as written; none unless there are exactly four parts and each is a valid one.
std::optional<std::array<QString, 4>> addressParts(QStringView text);

} // namespace corvane
