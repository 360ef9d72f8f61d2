#pragma once

#include <sys/types.h>

#include <atomic>
#include <mutex>
#include <string>
#include <string_view>

namespace vexa::layer {

/// The connection to the process that started the program. Without that process, messages are dropped.
///
/// The connection is open when that process has answered, or after a short time. So it can prepare to read the stack of
/// this program before an add-on runs.
///
/// A send waits until there is room, so that a slow reader needs no memory. Every system call is made directly: the
/// functions of the C library would be points at which the program may cancel a thread.
/// Threads: safe from any.
class Connection {
public:
    /// \param socket the path of the socket on which that process listens.
    explicit Connection(std::string socket) : m_socket(std::move(socket)) {}

    void send(std::string_view message);

private:
    bool isOpen() const;
    bool open();

    std::string m_socket;
    std::mutex m_guard;  // of opening
    std::atomic<int> m_descriptor{-1};
    std::atomic<bool> m_isLost{false};
    // Programs close descriptors that they do not know, and the number then belongs to something else.
    dev_t m_device = 0;
    ino_t m_file = 0;
};

}  // namespace vexa::layer
