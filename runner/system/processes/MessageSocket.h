#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <list>
#include <string>
#include <string_view>
#include <vector>

#include "system/Descriptor.h"
#include "system/NonCopyable.h"

struct pollfd;

namespace vexa::runner {

/// Receives messages of other processes, each as a whole. It listens in a folder that only this user can enter; the
/// destructor removes the folder. Each process that connects gets one byte as an answer.
class MessageSocket : NonCopyable {
public:
    /// \param greet called with each process that connects, before that process gets the answer; may be empty.
    /// \throws std::system_error
    explicit MessageSocket(std::function<void(pid_t)> greet = {});
    ~MessageSocket();

    /// Where processes connect to.
    const std::string& path() const { return m_path; }

    /// Waits until there are messages or \p other is readable, but at most for \p time; -1 for no limit.
    void wait(int other, std::chrono::milliseconds time = std::chrono::milliseconds(-1)) const;
    /// Calls \p use with the messages that are there now. Some may be left for the next call, if there are many.
    /// \return whether there were any.
    bool receive(const std::function<void(std::string_view)>& use);

private:
    void acceptNew();
    void greet(const Descriptor& connection) const;
    bool receiveFrom(const Descriptor& connection, const std::function<void(std::string_view)>& use, bool& isOpen);

    std::function<void(pid_t)> m_greet;
    std::string m_folder;
    std::string m_path;
    Descriptor m_listener;
    std::list<Descriptor> m_connections;
    std::vector<char> m_buffer;
};

}  // namespace vexa::runner
