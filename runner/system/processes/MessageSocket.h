#pragma once

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
/// destructor removes the folder.
class MessageSocket : NonCopyable {
public:
    /// \throws std::system_error
    MessageSocket();
    ~MessageSocket();

    /// Where processes connect to.
    const std::string& path() const { return m_path; }

    /// Waits until there are messages or \p other is readable.
    void wait(int other) const;
    /// Calls \p use with the messages that are there now. Some may be left for the next call, if there are many.
    /// \return whether there were any.
    bool receive(const std::function<void(std::string_view)>& use);

private:
    void acceptNew();
    bool receiveFrom(const Descriptor& connection, const std::function<void(std::string_view)>& use, bool& isOpen);

    std::string m_folder;
    std::string m_path;
    Descriptor m_listener;
    std::list<Descriptor> m_connections;
    std::vector<char> m_buffer;
};

}  // namespace vexa::runner
