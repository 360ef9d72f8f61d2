#include "system/files/WholeFile.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>

#include <array>
#include <cstdio>
#include <memory>

#include "system/LastError.h"
#include "system/files/StandardStreams.h"

namespace vexa::runner {
namespace {

struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<FILE, FileCloser>;

// An error code for named pipes, so that callers show its message as they show errno.
class NamedPipeCategory : public std::error_category {
public:
    const char* name() const noexcept override { return "named pipe"; }
    std::string message(int) const override { return "it is no regular file, but a named pipe"; }
};

// Pipes without a name have a file system of their own.
bool isNamedPipe(int descriptor) {
    struct stat status {};
    struct statfs system {};
    return fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode) && fstatfs(descriptor, &system) == 0 &&
           system.f_type != PIPEFS_MAGIC;
}

std::string readToEnd(FILE* file) {
    std::string text;
    std::array<char, 65536> chunk{};
    std::size_t count = 0;
    while ((count = std::fread(chunk.data(), 1, chunk.size(), file)) > 0) text.append(chunk.data(), count);
    if (std::ferror(file)) throwLastError();
    return text;
}

}  // namespace

std::string readWholeFile(const std::string& path) {
    const File file(std::fopen(path.c_str(), "rbe"));
    if (!file) throwLastError();
    return readToEnd(file.get());
}

std::string readInput(const std::string& path) {
    static const NamedPipeCategory kNamedPipe;
    if (isStandardInput(path)) return readStandardInput();
    const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) throwLastError();
    const File file(fdopen(descriptor, "rb"));
    if (isNamedPipe(descriptor)) throw std::system_error(1, kNamedPipe);
    if (!file || fcntl(descriptor, F_SETFL, 0) != 0) throwLastError();
    return readToEnd(file.get());
}

std::string readStandardInput() { return readToEnd(stdin); }

}  // namespace vexa::runner
