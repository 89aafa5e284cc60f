#pragma once

#include <QtGlobal>

namespace corvane::PortProbe {

// Whether something on this machine accepts TCP connections on the port: a connection to
// 0.0.0.0 is tried, giving up after the time-out.
bool isListening(quint16 port, int timeoutMs);

} // namespace corvane::PortProbe
