#include "probe/ReplacedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace vexa::probe {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kPermissions = 0777;
constexpr mode_t kNewFile = 0666;

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw std::runtime_error(path + ": cannot be written: " + reason);
}

// The new file, until it replaces the old one.
class Draft {
public:
    explicit Draft(const std::string& target)
        : m_name(target + ".new-" + std::to_string(getpid())),
          m_descriptor(open(m_name.c_str(), O_CREAT | O_TRUNC | O_NOFOLLOW | O_WRONLY | O_CLOEXEC, kNewFile)) {}
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;
    ~Draft() {
        if (m_descriptor < 0) return;
        close(m_descriptor);
        if (!m_isInPlace) unlink(m_name.c_str());
    }

    // Returns false, with errno set, if something fails.
    bool replace(const std::string& target, std::string_view text) {
        struct stat old {};
        if (m_descriptor < 0 || !write(text)) return false;
        if (stat(target.c_str(), &old) == 0 && fchmod(m_descriptor, old.st_mode & kPermissions) != 0) return false;
        m_isInPlace = fsync(m_descriptor) == 0 && std::rename(m_name.c_str(), target.c_str()) == 0;
        return m_isInPlace;
    }

private:
    bool write(std::string_view text) const {
        while (!text.empty()) {
            const ssize_t written = ::write(m_descriptor, text.data(), text.size());
            if (written < 0 && errno != EINTR) return false;
            if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
        }
        return true;
    }

    std::string m_name;
    int m_descriptor;
    bool m_isInPlace = false;
};

}  // namespace

void replaceFile(const std::string& path, const std::string& text) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) refuse(path, "it is no regular file");
    const std::string target = fs::exists(status) ? fs::canonical(path, error).string() : path;
    if (fs::exists(status) && access(path.c_str(), W_OK) != 0) refuse(path, std::generic_category().message(errno));
    if (!Draft(target).replace(target, text)) refuse(path, std::generic_category().message(errno));
}

}  // namespace vexa::probe
