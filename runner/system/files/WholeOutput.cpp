#include "system/files/WholeOutput.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "system/Descriptor.h"
#include "system/NonCopyable.h"
#include "system/processes/Signals.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kPermissions = 0777;
constexpr mode_t kWholeFileMode = 0666;

}  // namespace

// A file that is being written. If the file system supports this, the file has no name until it is complete.
class WholeOutput::Draft : NonCopyable {
public:
    explicit Draft(const std::string& target)
        : m_folder(fs::path(target).parent_path()),
          m_descriptor(open(m_folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, kWholeFileMode)) {
        const bool isNameNeeded = !isOpen() && (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL);
        if (!isNameNeeded) return;
        takeName([this](const char* name) {
            m_descriptor = Descriptor(open(name, O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, kWholeFileMode));
            return isOpen();
        });
    }
    ~Draft() {
        if (!m_name.empty()) unlink(m_name.c_str());
    }

    bool isOpen() const { return m_descriptor.isOpen(); }
    int descriptor() const { return m_descriptor.get(); }

    // Renames it to \p target. Returns false, with errno set, if that fails.
    bool replace(const std::string& target) {
        if (m_name.empty() && !takeName([this](const char* name) { return link(name); })) return false;
        if (!m_descriptor.close() || std::rename(m_name.c_str(), target.c_str()) != 0) return false;
        m_name.clear();
        return true;
    }

private:
    bool link(const char* name) const {
        const std::string self = "/proc/self/fd/" + std::to_string(descriptor());
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
    Descriptor m_descriptor;
};

WholeOutput::WholeOutput(const std::string& path) : m_path(path) {
    if (isStream(path)) {
        m_stream.emplace(path);
        return;
    }
    m_target = outputTarget(path);
    const SignalMask blocked(allSignals());
    const Draft draft(m_target);
    if (!draft.isOpen())
        refuseOutput(path, "cannot create a file in its folder: " + std::generic_category().message(errno));
}

WholeOutput::WholeOutput(WholeOutput&& other) noexcept = default;
WholeOutput& WholeOutput::operator=(WholeOutput&& other) noexcept = default;
WholeOutput::~WholeOutput() = default;

void WholeOutput::replace(std::string_view text) {
    const SignalMask blocked(allSignals());
    append(text);
    finish();
}

void WholeOutput::append(std::string_view part) {
    if (m_stream) return m_stream->append(part);
    if (!writeAll(draft().descriptor(), part)) refuseOutput(m_path);
}

void WholeOutput::finish() {
    if (m_stream) return m_stream->close();
    const SignalMask blocked(allSignals());
    struct stat old {};
    const bool exists = stat(m_target.c_str(), &old) == 0;
    const bool isWritten =
        (!exists || fchmod(draft().descriptor(), old.st_mode & kPermissions) == 0) && fsync(draft().descriptor()) == 0;
    if (!isWritten || !draft().replace(m_target)) refuseOutput(m_path);
}

WholeOutput::Draft& WholeOutput::draft() {
    if (!m_draft) m_draft = std::make_unique<Draft>(m_target);
    if (!m_draft->isOpen()) refuseOutput(m_path);
    return *m_draft;
}

}  // namespace vexa::runner
