#include "platform/PortProbe.h"

#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

bool corvane::PortProbe::isListening(quint16 port, int timeoutMs)
{
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, IPPROTO_TCP);
    if (fd < 0)
        return false;
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    bool connected =
        ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    if (!connected && errno == EINPROGRESS) {
        pollfd waiting = {fd, POLLOUT, 0};
        int ready = 0;
        do {
            ready = ::poll(&waiting, 1, timeoutMs);
        } while (ready < 0 && errno == EINTR);
        int error = 0;
        socklen_t length = sizeof error;
        connected = ready == 1 && ::getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length) == 0 &&
                    error == 0;
    }
    ::close(fd);
    return connected;
}
