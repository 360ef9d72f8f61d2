#include "system/files/FolderWatch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <string>
#include <system_error>
#include <utility>

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

// Not each write: a file is interesting when it is complete.
constexpr std::uint32_t kChanges = IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ATTRIB |
                                   IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

std::string limitReached(const char* limit) { return std::string("; the limit is ") + limit; }

[[noreturn]] void refuseFolder(const fs::path& folder) {
    const std::error_code error(errno, std::generic_category());
    const bool isLimit = error == std::errc::no_space_on_device;
    throw std::system_error(error, folder.string() + ": the folder cannot be watched" +
                                       (isLimit ? limitReached("/proc/sys/fs/inotify/max_user_watches") : ""));
}

}  // namespace

FolderWatch::FolderWatch() : m_descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (m_descriptor.isOpen()) return;
    const std::error_code error(errno, std::generic_category());
    const bool isLimit = error == std::errc::too_many_files_open;
    throw std::system_error(error, "the system does not watch folders" +
                                       (isLimit ? limitReached("/proc/sys/fs/inotify/max_user_instances") : ""));
}

void FolderWatch::setFolders(const std::set<fs::path>& folders) {
    std::set<int> watched;
    for (const fs::path& folder : folders) watched.insert(watch(fs::absolute(folder)));
    for (const int old : m_watched) {
        if (watched.count(old) == 0) inotify_rm_watch(descriptor(), old);
    }
    m_watched = std::move(watched);
}

int FolderWatch::watch(fs::path folder) const {
    for (;; folder = folder.parent_path()) {
        const int number = inotify_add_watch(descriptor(), folder.c_str(), kChanges);
        if (number >= 0) return number;
        const bool isMissing = errno == ENOENT || errno == ENOTDIR;
        if (!isMissing || !folder.has_relative_path()) refuseFolder(folder);
    }
}

void FolderWatch::forget() const {
    std::array<char, 65536> events{};
    while (read(descriptor(), events.data(), events.size()) > 0) {}
}

}  // namespace vexa::runner
