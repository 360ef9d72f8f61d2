#include "system/processes/MessageSocket.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "system/LastError.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

constexpr int kMostWaiting = 128;
constexpr std::size_t kLongestMessage = std::size_t{1} << 20;
constexpr int kMostMessages = 1000;  // messages of a connection, so that none waits for the others
constexpr const char* kFolder = "/vexa-attach-XXXXXX";
constexpr const char* kSocket = "/socket";

// The path of a socket is short, so that a long folder for temporary files cannot be used.
std::string newFolder() {
    std::error_code error;
    const std::string place = fs::temp_directory_path(error).string();
    const bool isUsable =
        !error && place.size() + std::strlen(kFolder) + std::strlen(kSocket) < sizeof(sockaddr_un::sun_path);
    std::string folder = (isUsable ? place : "/tmp") + kFolder;
    if (mkdtemp(folder.data()) == nullptr) throwLastError(folder.c_str());
    return folder;
}

}  // namespace

MessageSocket::MessageSocket(std::function<void(pid_t)> greet)
    : m_greet(std::move(greet)), m_folder(newFolder()), m_path(m_folder + kSocket), m_buffer(kLongestMessage) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    m_path.copy(static_cast<char*>(address.sun_path), sizeof address.sun_path - 1);
    m_listener = Descriptor(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const auto* const at = reinterpret_cast<const sockaddr*>(&address);
    if (m_listener.isOpen() && bind(m_listener.get(), at, sizeof address) == 0 &&
        listen(m_listener.get(), kMostWaiting) == 0) {
        return;
    }
    const int error = errno;
    fs::remove_all(m_folder);
    throw std::system_error(error, std::generic_category(), m_path);
}

MessageSocket::~MessageSocket() {
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

void MessageSocket::wait(int other, std::chrono::milliseconds time) const {
    std::vector<pollfd> waited = {{other, POLLIN, 0}, {m_listener.get(), POLLIN, 0}};
    for (const Descriptor& connection : m_connections) waited.push_back({connection.get(), POLLIN, 0});
    poll(waited.data(), waited.size(), static_cast<int>(time.count()));
}

bool MessageSocket::receive(const std::function<void(std::string_view)>& use) {
    acceptNew();
    bool hasAny = false;
    for (auto connection = m_connections.begin(); connection != m_connections.end();) {
        bool isOpen = true;
        hasAny |= receiveFrom(*connection, use, isOpen);
        connection = isOpen ? std::next(connection) : m_connections.erase(connection);
    }
    return hasAny;
}

void MessageSocket::acceptNew() {
    for (;;) {
        Descriptor connection(accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!connection.isOpen()) return;
        greet(connection);
        m_connections.push_back(std::move(connection));
    }
}

void MessageSocket::greet(const Descriptor& connection) const {
    ucred peer{};
    socklen_t size = sizeof peer;
    const bool isKnown = getsockopt(connection.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.pid != 0;
    if (m_greet && isKnown) m_greet(peer.pid);
    send(connection.get(), "g", 1, MSG_NOSIGNAL);
}

bool MessageSocket::receiveFrom(const Descriptor& connection, const std::function<void(std::string_view)>& use,
                                bool& isOpen) {
    for (int count = 0; count != kMostMessages; ++count) {
        const ssize_t size = recv(connection.get(), m_buffer.data(), m_buffer.size(), 0);
        if (size < 0 && (errno == EAGAIN || errno == EINTR)) return count != 0;
        if (size <= 0) {
            isOpen = false;
            return count != 0;
        }
        use({m_buffer.data(), static_cast<std::size_t>(size)});
    }
    return true;
}

}  // namespace vexa::runner
