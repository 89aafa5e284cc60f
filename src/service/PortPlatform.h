#pragma once

#include <QString>
#include <optional>

namespace corvane {

// Where the ports of this user live and who is at the other end of a connection. Everything
// the link needs from the operating system beyond the sockets themselves goes through here, so
// tests can play another user.
class PortPlatform
{
public:
    virtual ~PortPlatform() = default;

    // The folder of this user's ports, created (mode 0700) when missing; empty, with the reason
    // logged, when it cannot be used safely.
    virtual QString portFolder() const = 0;
    // The user id at the other end of a connected local socket; nullopt when unknown.
    virtual std::optional<unsigned> peerUserId(qintptr socketDescriptor) const = 0;
    virtual unsigned userId() const = 0;

    // The platform in use; the system's unless a test installed another.
    static const PortPlatform& current();
    // Installs a platform (not owned); nullptr goes back to the system's.
    static void setCurrent(const PortPlatform* platform);

    // The socket path of a named port in the port folder; empty, with the reason logged, when
    // the folder is unusable, the name is not a plain file name, or the path does not fit a
    // local socket address.
    static QString portPath(const QString& portName);
};

// The Linux implementation: $TVK_PORT_DIR, else $XDG_RUNTIME_DIR/tvk, else /tmp/tvk-<uid>;
// peers identified with SO_PEERCRED.
class SystemPortPlatform : public PortPlatform
{
public:
    QString portFolder() const override;
    std::optional<unsigned> peerUserId(qintptr socketDescriptor) const override;
    unsigned userId() const override;
};

} // namespace corvane
