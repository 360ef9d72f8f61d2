#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "vexastandin/Finding.h"
#include "vexastandin/Observer.h"

namespace vexa::standin {

/// What a message says. AddOnMapped has the path of an add-on, or of a library that an add-on loads; a note has a text.
enum class Message_e : unsigned char { EntryBegan, EntryEnded, CallBegan, CallEnded, FindingMade, AddOnMapped, Note };

/// An event of a host, or a text for the user, that one process sends to another.
///
/// The events are those of ObserverInterface. The std::thread::id of an event means nothing to another process and is
/// left out.
struct EventMessage {
    Message_e kind = Message_e::Note;
    long thread = 0;  ///< the kernel's id of the thread
    std::variant<std::string, EntryEvent, CallEvent, Finding>
        content;  ///< according to the kind: a path and a note are texts
};

/// A longer text in a message is cut. So each message fits the buffer of a socket.
inline constexpr std::size_t kLongestText = std::size_t{16} * 1024;

/// \p message as bytes, for readMessage() of the same version.
std::string bytesOf(const EventMessage& message);

/// \return the message; nothing if \p bytes are no message.
std::optional<EventMessage> readMessage(std::string_view bytes);

}  // namespace vexa::standin
