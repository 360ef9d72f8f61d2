#include "system/Descriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>

#include "system/LastError.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kMostFetchedBytes = std::size_t{1} << 20;

// Another program may have left the terminal in non-blocking mode.
bool waitUntilWritable(int descriptor) {
    pollfd waited{descriptor, POLLOUT, 0};
    return poll(&waited, 1, -1) >= 0 || errno == EINTR;
}

template <class Put>
bool putAll(int descriptor, std::string_view text, const Put& put) {
    while (!text.empty()) {
        const ssize_t count = put(descriptor, text.data(), text.size());
        if (count < 0 && errno == EAGAIN && waitUntilWritable(descriptor)) continue;
        if (count < 0 && errno != EINTR) return false;
        if (count > 0) text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

}  // namespace

Pipe::Pipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) throwLastError("no pipe");
    reader = Descriptor(ends[0]);
    writer = Descriptor(ends[1]);
    fcntl(reader.get(), F_SETFL, O_NONBLOCK);
}

bool writeAll(int descriptor, std::string_view text) { return putAll(descriptor, text, ::write); }

bool sendAll(int socket, std::string_view text) {
    return putAll(socket, text,
                  [](int to, const void* bytes, std::size_t size) { return ::send(to, bytes, size, MSG_NOSIGNAL); });
}

bool readAvailable(int descriptor, std::string& text) {
    std::array<char, 65536> chunk;
    for (std::size_t fetched = 0; fetched < kMostFetchedBytes;) {
        const ssize_t count = read(descriptor, chunk.data(), chunk.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return count != 0 && errno == EAGAIN;
        text.append(chunk.data(), static_cast<std::size_t>(count));
        fetched += static_cast<std::size_t>(count);
    }
    return true;
}

bool requireAvailable(int descriptor, std::string& text, const char* what) {
    errno = 0;  // the end of the file does not set it
    const bool mayGoOn = readAvailable(descriptor, text);
    const bool hasFailed =
        !mayGoOn && errno != 0 && errno != ECONNRESET;  // a process may end before it reads an answer
    if (hasFailed) throwLastError(what);
    return mayGoOn;
}

}  // namespace vexa::runner
