#include "system/files/AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include "system/files/Descriptor.h"
#include "system/processes/BlockedSignals.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kPermissions = 0777;
constexpr mode_t kNewFile = 0666;

// A file that is being written. It has no name until it is complete, if the file system can do that.
class Draft {
public:
    explicit Draft(const fs::path& folder) : m_folder(folder) {
        m_descriptor = open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, kNewFile);
        const bool isNameNeeded = m_descriptor < 0 && (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL);
        if (isNameNeeded) {
            takeName([this](const char* name) {
                m_descriptor = open(name, O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, kNewFile);
                return m_descriptor >= 0;
            });
        }
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;
    ~Draft() {
        const int error = errno;
        if (m_descriptor >= 0) close(m_descriptor);
        if (!m_name.empty()) unlink(m_name.c_str());
        errno = error;
    }

    bool isOpen() const { return m_descriptor >= 0; }
    int descriptor() const { return m_descriptor; }

    // Renames it to \p target. Returns false, with errno set, if that fails.
    bool replace(const std::string& target) {
        if (m_name.empty() && !takeName([this](const char* name) { return link(name); })) return false;
        if (close(std::exchange(m_descriptor, -1)) != 0 || std::rename(m_name.c_str(), target.c_str()) != 0)
            return false;
        m_name.clear();
        return true;
    }

private:
    bool link(const char* name) const {
        const std::string self = "/proc/self/fd/" + std::to_string(m_descriptor);
        return linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name, AT_SYMLINK_FOLLOW) == 0;
    }

    // Calls \p make with names until one is new in the folder.
    template <class Make>
    bool takeName(const Make& make) {
        for (unsigned attempt = 0;; ++attempt) {
            const std::string name = ".vexa-standin-" + std::to_string(getpid()) + '-' + std::to_string(attempt);
            const std::string path = m_folder / name;
            if (make(path.c_str())) {
                m_name = path;
                return true;
            }
            if (errno != EEXIST) return false;
        }
    }

    fs::path m_folder;
    std::string m_name;  // empty while it has no name
    int m_descriptor = -1;
};

fs::path folderOf(const std::string& target) { return fs::path(target).parent_path(); }

}  // namespace

AtomicFile::AtomicFile(const std::string& path) : m_path(path), m_target(outputTarget(path)) {
    const BlockedSignals blocked;
    if (Draft(folderOf(m_target)).isOpen()) return;
    refuseOutput(m_path, "no file can be made in its folder: " + std::generic_category().message(errno));
}

void AtomicFile::replace(std::string_view text) const {
    const BlockedSignals blocked;
    Draft draft(folderOf(m_target));
    struct stat old {};
    const bool exists = stat(m_target.c_str(), &old) == 0;
    const bool isWritten = draft.isOpen() && (!exists || fchmod(draft.descriptor(), old.st_mode & kPermissions) == 0) &&
                           writeAll(draft.descriptor(), text) && fsync(draft.descriptor()) == 0;
    if (!isWritten || !draft.replace(m_target)) refuseOutput(m_path);
}

}  // namespace vexa::runner
