#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "session/watch/Notes.h"
#include "system/Descriptor.h"

namespace vexa::runner {

/// A message of a watched process.
struct Message {
    char kind = 0;
    bool isAsked = false;  ///< the process waits for an answer
    std::string text;
};

/// The two ends of a connection between this process and its child.
struct Connection {
    /// \throws std::system_error
    Connection();

    Descriptor parentEnd;
    Descriptor childEnd;  ///< The parent closes it after the fork, so that it sees when the child closes its own.
};

/// Sends messages from the child to the parent.
class Channel : public NotesInterface {
public:
    /// \param sent counts the messages, so that the parent knows whether it got them all.
    Channel(int descriptor, std::atomic<std::uint64_t>& sent) : m_descriptor(descriptor), m_sent(sent) {}

    void tell(char kind, std::string_view text) override;
    std::string ask(char kind, std::string_view text) override;

private:
    void send(char kind, bool isAsked, std::string_view text);

    std::mutex m_guard;
    int m_descriptor;
    std::atomic<std::uint64_t>& m_sent;
};

/// Receives the messages of a child.
class Mailbox {
public:
    explicit Mailbox(int descriptor) : m_descriptor(descriptor) {}

    /// Reads what was sent so far, without waiting.
    /// \return whether the end of the child is still open.
    /// \throws std::system_error if the connection cannot be read.
    bool fetch();
    /// The next message; nothing if it is not complete yet.
    std::optional<Message> next();
    /// Returns how many messages next() has returned.
    std::uint64_t received() const { return m_received; }
    /// Answers the last message that next() returned.
    void answer(std::string_view text) const;

private:
    int m_descriptor;
    std::string m_bytes;
    std::size_t m_at = 0;  // where the next message starts
    std::uint64_t m_received = 0;
};

}  // namespace vexa::runner
