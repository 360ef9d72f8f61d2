#include "session/watch/Channel.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

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

constexpr std::size_t kMostAtOnce = std::size_t{1} << 20;

constexpr char kAnswer = 'a';

bool sendAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count < 0 && errno != EINTR) return false;
        if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool sendMessage(int descriptor, char kind, bool isAsked, std::string_view text) {
    std::array<char, sizeof(Head)> bytes{};
    const Head head{text.size(), kind, isAsked};
    std::memcpy(bytes.data(), &head, sizeof head);
    return sendAll(descriptor, {bytes.data(), bytes.size()}) && sendAll(descriptor, text);
}

bool receiveAll(int descriptor, char* bytes, std::size_t size) {
    for (std::size_t at = 0; at != size;) {
        const ssize_t count = ::recv(descriptor, bytes + at, size - at, 0);
        if (count == 0 || (count < 0 && errno != EINTR)) return false;
        if (count > 0) at += static_cast<std::size_t>(count);
    }
    return true;
}

}  // namespace

Connection::Connection() {
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, m_ends) != 0) throwLastError("no connection");
    if (fcntl(m_ends[0], F_SETFL, O_NONBLOCK) != 0) throwLastError("no connection");
}

Connection::~Connection() {
    for (const int end : m_ends) {
        if (end >= 0) close(end);
    }
}

void Connection::closeChildEnd() { close(std::exchange(m_ends[1], -1)); }

void Connection::closeParentEnd() { close(std::exchange(m_ends[0], -1)); }

void Channel::send(char kind, bool isAsked, std::string_view text) {
    ++m_sent;
    sendMessage(m_descriptor, kind, isAsked, text);  // one that is lost is missed by the count
}

void Channel::tell(char kind, std::string_view text) {
    const std::lock_guard<std::mutex> lock(m_guard);
    send(kind, false, text);
}

std::string Channel::ask(char kind, std::string_view text) {
    const std::lock_guard<std::mutex> lock(m_guard);
    send(kind, true, text);
    Head head;
    std::array<char, sizeof head> bytes{};
    if (!receiveAll(m_descriptor, bytes.data(), bytes.size())) return "";
    std::memcpy(&head, bytes.data(), sizeof head);
    std::string answer(head.size, '\0');
    return receiveAll(m_descriptor, answer.data(), answer.size()) ? answer : "";
}

bool Mailbox::fetch() {
    m_bytes.erase(0, std::exchange(m_at, 0));
    std::array<char, 65536> chunk;
    for (std::size_t fetched = 0; fetched < kMostAtOnce;) {
        const ssize_t count = ::recv(m_descriptor, chunk.data(), chunk.size(), 0);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return count != 0 && errno == EAGAIN;
        m_bytes.append(chunk.data(), static_cast<std::size_t>(count));
        fetched += static_cast<std::size_t>(count);
    }
    return true;
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

// The child waits for it, so there is room.
void Mailbox::answer(std::string_view text) const {
    const int flags = fcntl(m_descriptor, F_GETFL);
    fcntl(m_descriptor, F_SETFL, flags & ~O_NONBLOCK);
    sendMessage(m_descriptor, kAnswer, false, text);
    fcntl(m_descriptor, F_SETFL, flags);
}

}  // namespace vexa::runner
