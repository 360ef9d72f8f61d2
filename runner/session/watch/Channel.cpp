#include "session/watch/Channel.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "system/LastError.h"

namespace vexa::runner {
namespace {

struct Head {
    std::uint64_t size = 0;
    char kind = 0;
    bool isAsked = false;
};

constexpr char kAnswer = 'a';

bool sendMessage(int descriptor, char kind, bool isAsked, std::string_view text) {
    const Head head{text.size(), kind, isAsked};
    const void* const bytes = &head;
    return sendAll(descriptor, {static_cast<const char*>(bytes), sizeof head}) && sendAll(descriptor, text);
}

bool receiveAll(int descriptor, void* bytes, std::size_t size) {
    for (std::size_t at = 0; at != size;) {
        const ssize_t count = ::recv(descriptor, static_cast<char*>(bytes) + at, size - at, 0);
        if (count == 0 || (count < 0 && errno != EINTR)) return false;
        if (count > 0) at += static_cast<std::size_t>(count);
    }
    return true;
}

}  // namespace

Connection::Connection() {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) throwLastError("no connection");
    parentEnd = Descriptor(ends[0]);
    childEnd = Descriptor(ends[1]);
    if (fcntl(parentEnd.get(), F_SETFL, O_NONBLOCK) != 0) throwLastError("no connection");
}

void Channel::send(char kind, bool isAsked, std::string_view text) {
    ++m_sent;
    sendMessage(m_descriptor, kind, isAsked, text);  // the count reveals a lost message
}

void Channel::tell(char kind, std::string_view text) {
    const std::lock_guard<std::mutex> lock(m_guard);
    send(kind, false, text);
}

std::string Channel::ask(char kind, std::string_view text) {
    const std::lock_guard<std::mutex> lock(m_guard);
    send(kind, true, text);
    Head head;
    if (!receiveAll(m_descriptor, &head, sizeof head)) return "";
    std::string answer(head.size, '\0');
    return receiveAll(m_descriptor, answer.data(), answer.size()) ? answer : "";
}

bool Mailbox::fetch() {
    m_bytes.erase(0, std::exchange(m_at, 0));
    return requireAvailable(m_descriptor, m_bytes, "the report of the process for the add-ons cannot be read");
}

std::optional<Message> Mailbox::next() {
    Head head;
    const std::size_t left = m_bytes.size() - m_at;
    if (left < sizeof head) return std::nullopt;
    std::memcpy(&head, m_bytes.data() + m_at, sizeof head);
    if (left - sizeof head < head.size) return std::nullopt;
    Message message{head.kind, head.isAsked, m_bytes.substr(m_at + sizeof head, head.size)};
    m_at += sizeof head + head.size;
    ++m_received;
    return message;
}

void Mailbox::answer(std::string_view text) const { sendMessage(m_descriptor, kAnswer, false, text); }

}  // namespace vexa::runner
