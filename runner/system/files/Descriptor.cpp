#include "system/files/Descriptor.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace vexa::runner {
namespace {

// Another program may have left the terminal in non-blocking mode.
bool waitUntilWritable(int descriptor) {
    pollfd waited{descriptor, POLLOUT, 0};
    return poll(&waited, 1, -1) >= 0 || errno == EINTR;
}

}  // namespace

bool writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0 && errno == EAGAIN && waitUntilWritable(descriptor)) continue;
        if (written < 0 && errno != EINTR) return false;
        if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

}  // namespace vexa::runner
