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

[[noreturn]] void refuse(const std::string& path, const std::string& why) {
    throw OutputError(path + ": cannot be written: " + why);
}

[[noreturn]] void refuse(const std::string& path, std::error_code error) { refuse(path, error.message()); }

std::error_code lastError() { return {errno, std::generic_category()}; }

// Follows symbolic links, one that points to no file included: the file is made where it points.
std::string resolved(const std::string& path) {
    fs::path file(path);
    while (fs::is_symlink(file)) file = file.parent_path() / fs::read_symlink(file);
    const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    return fs::canonical(folder) / file.filename();
}

// A name that no other file in the folder has; the number counts on past what a killed run left.
std::string temporaryName(const std::string& target, unsigned attempt) {
    const std::string name = ".vexa-standin-" + std::to_string(getpid()) + '-' + std::to_string(attempt);
    return fs::path(target).parent_path() / name;
}

}  // namespace

// The delegation has the destructor clean up when the rest of the construction throws.
AtomicFile::AtomicFile(const std::string& path) : AtomicFile() {
    m_path = path;
    struct stat old {};
    const bool exists = stat(path.c_str(), &old) == 0;
    if (!exists && (errno != ENOENT || path.empty())) refuse(path, lastError());
    if (exists && !S_ISREG(old.st_mode)) refuse(path, "it is no regular file");
    if (exists && access(path.c_str(), W_OK) != 0) refuse(path, lastError());
    try {
        m_target = resolved(path);
    } catch (const fs::filesystem_error& error) {
        refuse(path, error.code());
    }
    createTemporary();
    if (exists && fchmod(m_descriptor, old.st_mode & kPermissions) != 0) refuse(path, lastError());
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
            refuse(m_path, "no file can be made in its folder: " + lastError().message());
        }
    }
}

void AtomicFile::replace(std::string_view text) {
    if (!writeAll(m_descriptor, text) || fsync(m_descriptor) != 0) refuse(m_path, lastError());
    const int closed = close(m_descriptor);
    m_descriptor = -1;
    if (closed != 0 || std::rename(m_temporary.c_str(), m_target.c_str()) != 0) refuse(m_path, lastError());
    m_temporary.clear();
}

}  // namespace vexa::runner
