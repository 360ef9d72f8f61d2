#include "AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "Descriptor.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kPermissions = 0777;
constexpr mode_t kNewFile = 0666;

// A name that no other file in the folder has; the number counts on past what a killed run left.
std::string temporaryName(const std::string& target, unsigned attempt) {
    const std::string name = ".vexa-standin-" + std::to_string(getpid()) + '-' + std::to_string(attempt);
    return fs::path(target).parent_path() / name;
}

}  // namespace

// The delegation has the destructor clean up when the rest of the construction throws.
AtomicFile::AtomicFile(const std::string& path) : AtomicFile() {
    m_path = path;
    m_target = outputTarget(path);
    struct stat old {};
    const bool exists = stat(path.c_str(), &old) == 0;
    createTemporary();
    if (exists && fchmod(m_descriptor, old.st_mode & kPermissions) != 0) refuseOutput(path);
}

AtomicFile::~AtomicFile() {
    if (m_descriptor >= 0) close(m_descriptor);
    if (!m_temporary.empty()) unlink(m_temporary.c_str());
}

void AtomicFile::createTemporary() {
    for (unsigned attempt = 0; m_descriptor < 0; ++attempt) {
        const std::string name = temporaryName(m_target, attempt);
        m_descriptor = open(name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, kNewFile);
        if (m_descriptor >= 0) {
            m_temporary = name;
        } else if (errno != EEXIST) {
            refuseOutput(m_path, "no file can be made in its folder: " + std::generic_category().message(errno));
        }
    }
}

void AtomicFile::replace(std::string_view text) {
    if (!writeAll(m_descriptor, text) || fsync(m_descriptor) != 0) refuseOutput(m_path);
    const int closed = close(m_descriptor);
    m_descriptor = -1;
    if (closed != 0 || std::rename(m_temporary.c_str(), m_target.c_str()) != 0) refuseOutput(m_path);
    m_temporary.clear();
}

}  // namespace vexa::runner
