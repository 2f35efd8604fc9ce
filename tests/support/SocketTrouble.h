#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstdint>

namespace sonavault::testing {

/// The end of that connection, when it is closed, reaches the other side as a reset.
inline bool closeWithReset(std::intptr_t socket) {
    const linger atOnce{.l_onoff = 1, .l_linger = 0};
    return ::setsockopt(static_cast<int>(socket), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce) ==
           0;
}

inline bool listensOn(int descriptor, std::uint16_t port) {
    int listens = 0;
    socklen_t size = sizeof listens;
    if (::getsockopt(descriptor, SOL_SOCKET, SO_ACCEPTCONN, &listens, &size) != 0 || !listens)
        return false;
    sockaddr_in6 address{};
    size = sizeof address;
    // The port lies in the same place for both families.
    return ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size) == 0 &&
           ntohs(address.sin6_port) == port;
}

/// The system takes the door at that port away from this process, which still has the descriptor;
/// false when there is none.
inline bool takeListenerAway(std::uint16_t port) {
    constexpr int kMostDescriptors = 1024;
    for (int descriptor = 0; descriptor < kMostDescriptors; ++descriptor)
        if (listensOn(descriptor, port)) return ::shutdown(descriptor, SHUT_RDWR) == 0;
    return false;
}

}  // namespace sonavault::testing
