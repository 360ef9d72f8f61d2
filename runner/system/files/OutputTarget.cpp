#include "system/files/OutputTarget.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "system/files/StandardStreams.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kNewFile = 0666;

std::string resolved(const std::string& path) {
    fs::path file(path);
    while (fs::is_symlink(file)) file = file.parent_path() / fs::read_symlink(file);
    const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    return fs::canonical(folder) / file.filename();
}

bool isStream(mode_t mode) { return S_ISFIFO(mode) || S_ISCHR(mode); }

// Redirects the output of the program and its add-ons to the standard error output. Returns a descriptor of the former
// standard output.
int takeStandardOutput() {
    std::fflush(stdout);
    const int flags = fcntl(STDOUT_FILENO, F_GETFL);
    if (flags < 0) refuseOutput(kStandardOutputName);
    // At its start the program opens a closed standard output for reading, so that no other file gets its number.
    if ((flags & O_ACCMODE) == O_RDONLY) refuseOutput(kStandardOutputName, "it is closed");
    const int descriptor = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (descriptor < 0 || dup2(STDERR_FILENO, STDOUT_FILENO) < 0) refuseOutput(kStandardOutputName);
    return descriptor;
}

// Without O_NONBLOCK, opening a pipe that nobody reads would wait forever.
int openedStream(const std::string& path) {
    const int descriptor = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0 && errno == ENXIO) refuseOutput(path, "nobody reads it");
    if (descriptor < 0 || fcntl(descriptor, F_SETFL, 0) != 0) refuseOutput(path);
    return descriptor;
}

}  // namespace

void refuseOutput(const std::string& path, const std::string& why) {
    throw OutputError(path + ": cannot be written: " + why);
}

void refuseOutput(const std::string& path) {
    refuseOutput(path, std::error_code(errno, std::generic_category()).message());
}

std::string outputTarget(const std::string& path) {
    struct stat old {};
    const bool exists = stat(path.c_str(), &old) == 0;
    if (!exists && (errno != ENOENT || path.empty())) refuseOutput(path);
    if (exists && !S_ISREG(old.st_mode)) refuseOutput(path, "it is no regular file");
    if (exists && access(path.c_str(), W_OK) != 0) refuseOutput(path);
    try {
        return resolved(path);
    } catch (const fs::filesystem_error& error) {
        refuseOutput(path, error.code().message());
    }
}

bool isStream(const std::string& path) {
    struct stat status {};
    return isStandardOutput(path) || (stat(path.c_str(), &status) == 0 && isStream(status.st_mode));
}

int openOutput(const std::string& path) {
    if (isStandardOutput(path)) return takeStandardOutput();
    if (isStream(path)) return openedStream(path);
    const int descriptor = open(outputTarget(path).c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, kNewFile);
    if (descriptor < 0) refuseOutput(path);
    return descriptor;
}

}  // namespace vexa::runner
