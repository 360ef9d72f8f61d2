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

// An output need not exist, so "No such file or directory" would not say what is missing.
std::string reasonOf(const std::string& path, const std::error_code& error) {
    const bool isFolderMissing = error == std::errc::no_such_file_or_directory && !path.empty();
    return isFolderMissing ? "its folder does not exist" : error.message();
}

}  // namespace

void refuseOutput(const std::string& path, const std::string& why) {
    throw OutputError(path + ": cannot be written: " + why);
}

void refuseOutput(const std::string& path) {
    refuseOutput(path, reasonOf(path, std::error_code(errno, std::generic_category())));
}

std::string outputTarget(const std::string& path) {
    struct stat old {};
    const bool exists = stat(path.c_str(), &old) == 0;
    if (!exists && (errno != ENOENT || path.empty())) refuseOutput(path);
    if (exists && !S_ISREG(old.st_mode)) refuseOutput(path, "it is not a regular file");
    if (exists && access(path.c_str(), W_OK) != 0) refuseOutput(path);
    try {
        return resolved(path);
    } catch (const fs::filesystem_error& error) {
        refuseOutput(path, reasonOf(path, error.code()));
    }
}

bool isStream(const std::string& path) {
    struct stat status {};
    return isStandardOutput(path) ||
           (stat(path.c_str(), &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode)));
}

}  // namespace vexa::runner
