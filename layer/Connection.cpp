#include "layer/Connection.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace vexa::layer {
namespace {

constexpr int kLeastDescriptor = 200;  // leaves the small numbers to the program
constexpr time_t kSecondsToAnswer = 2;

// Moves a descriptor away from the numbers that a program expects for its own files.
int movedUp(int descriptor) {
    const long moved = syscall(SYS_fcntl, descriptor, F_DUPFD_CLOEXEC, kLeastDescriptor);
    if (moved < 0) return descriptor;
    syscall(SYS_close, descriptor);
    return static_cast<int>(moved);
}

bool connectTo(int descriptor, const std::string& path) {
    sockaddr_un address{};
    if (path.size() >= sizeof address.sun_path) return false;
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    while (syscall(SYS_connect, descriptor, &address, sizeof address) != 0) {
        if (errno != EINTR) return false;
    }
    return true;
}

// Waits for the byte with which the other process answers.
void awaitAnswer(int descriptor) {
    const timeval limit{kSecondsToAnswer, 0};
    syscall(SYS_setsockopt, descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    char byte = 0;
    while (syscall(SYS_recvfrom, descriptor, &byte, 1, 0, nullptr, nullptr) < 0 && errno == EINTR) {}
}

bool isEndOfConnection(int error) { return error == EPIPE || error == ECONNRESET || error == ENOTCONN; }

}  // namespace

void Connection::send(std::string_view message) {
    while (!m_isLost) {
        if (!isOpen() && !open()) return;
        const long sent =
            syscall(SYS_sendto, m_descriptor.load(), message.data(), message.size(), MSG_NOSIGNAL, nullptr, 0);
        if (sent >= 0) return;
        if (isEndOfConnection(errno)) m_isLost = true;
        // A descriptor that the program has closed meanwhile is opened again. What cannot be sent is left out.
        if (errno != EINTR && errno != EBADF && errno != ENOTSOCK) return;
    }
}

bool Connection::isOpen() const {
    struct stat status {};
    const int descriptor = m_descriptor;
    return descriptor >= 0 && fstat(descriptor, &status) == 0 && status.st_dev == m_device && status.st_ino == m_file;
}

bool Connection::open() {
    const std::lock_guard<std::mutex> lock(m_guard);
    if (isOpen()) return true;
    const auto descriptor = static_cast<int>(syscall(SYS_socket, AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    if (descriptor >= 0 && connectTo(descriptor, m_socket)) {
        awaitAnswer(descriptor);
        const int moved = movedUp(descriptor);
        struct stat status {};
        fstat(moved, &status);
        m_device = status.st_dev;
        m_file = status.st_ino;
        m_descriptor = moved;
        return true;
    }
    if (descriptor >= 0) syscall(SYS_close, descriptor);
    m_isLost = true;
    return false;
}

}  // namespace vexa::layer
