#include "system/files/OutputTarget.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "system/files/StandardStreams.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

std::string resolved(const std::string& path) {
    fs::path file(path);
    while (fs::is_symlink(file)) file = file.parent_path() / fs::read_symlink(file);
    const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    return fs::canonical(folder) / file.filename();
}

}  // namespace

void refuseOutput(const std::string& path, const std::string& why) {
    throw OutputError(path + ": cannot be written: " + why);
}

void refuseOutput(const std::string& path) { refuseOutput(path, std::generic_category().message(errno)); }

std::string outputTarget(const std::string& path) {
    struct stat old {};
    const bool exists = stat(path.c_str(), &old) == 0;
    if (!exists && (errno != ENOENT || path.empty())) refuseOutput(path);
    if (exists && !S_ISREG(old.st_mode)) refuseOutput(path, "it is not a regular file");
    if (exists && access(path.c_str(), W_OK) != 0) refuseOutput(path);
    try {
        return resolved(path);
    } catch (const fs::filesystem_error& error) {
        refuseOutput(path, error.code().message());
    }
}

bool isStream(const std::string& path) {
    struct stat status {};
    return isStandardOutput(path) ||
           (stat(path.c_str(), &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode)));
}

}  // namespace vexa::runner
