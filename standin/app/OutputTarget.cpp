#include "OutputTarget.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

std::string resolved(const std::string& path) {
    fs::path file(path);
    while (fs::is_symlink(file)) file = file.parent_path() / fs::read_symlink(file);
    const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    return fs::canonical(folder) / file.filename();
}

// An output may not be there yet; then its name is all there is to compare.
bool isSameFile(const std::string& output, const std::string& other) {
    std::error_code error;
    if (fs::equivalent(output, other, error)) return true;
    const fs::path path = fs::weakly_canonical(fs::absolute(other, error), error);
    return !error && path == outputTarget(output);
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

void refuseTaken(const std::string& output, const std::vector<std::string>& taken) {
    for (const std::string& file : taken) {
        if (isSameFile(output, file)) refuseOutput(output, "the run uses it as " + file + ", too");
    }
}

}  // namespace vexa::runner
