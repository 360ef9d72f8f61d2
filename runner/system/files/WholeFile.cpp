#include "system/files/WholeFile.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>

#include <array>
#include <cerrno>

#include "system/LastError.h"
#include "system/files/StandardStreams.h"

namespace vexa::runner {
namespace {

// An error code for named pipes, so that callers show its message as they show errno.
class NamedPipeCategory : public std::error_category {
public:
    const char* name() const noexcept override { return "named pipe"; }
    std::string message(int) const override { return "it is a named pipe, not a regular file"; }
};

// Only named pipes: pipes without a name belong to a special file system.
bool isNamedPipe(int descriptor) {
    struct stat status {};
    struct statfs system {};
    return fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode) && fstatfs(descriptor, &system) == 0 &&
           system.f_type != PIPEFS_MAGIC;
}

std::string readToEnd(int descriptor, std::size_t most = kNoLimit) {
    std::string text;
    std::array<char, 65536> chunk;
    for (;;) {
        const ssize_t count = read(descriptor, chunk.data(), chunk.size());
        if (count == 0) return text;
        if (count < 0 && errno != EINTR) throwLastError();
        if (count < 0) continue;
        text.append(chunk.data(), static_cast<std::size_t>(count));
        if (text.size() > most) throw std::system_error(std::make_error_code(std::errc::file_too_large));
    }
}

}  // namespace

std::string readWholeFile(const std::string& path) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen()) throwLastError();
    return readToEnd(file.get());
}

Descriptor openInput(const std::string& path) {
    static const NamedPipeCategory kNamedPipe;
    Descriptor file(isStandardInput(path) ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)
                                          : open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen()) throwLastError();
    if (isStandardInput(path)) return file;
    if (isNamedPipe(file.get())) throw std::system_error(1, kNamedPipe);
    if (fcntl(file.get(), F_SETFL, 0) != 0) throwLastError();
    return file;
}

std::string readInput(const std::string& path, std::size_t most) { return readToEnd(openInput(path).get(), most); }

std::string readStandardInput() { return readToEnd(STDIN_FILENO); }

}  // namespace vexa::runner
