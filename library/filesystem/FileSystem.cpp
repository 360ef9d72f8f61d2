#include "vexautilutil/FileSystem.h"

#include <sys/stat.h>

#include <algorithm>
#include <boost/system/error_code.hpp>
#include <cstdlib>
#include <new>

namespace vexa::filesystem {
namespace {

namespace bfs = boost::filesystem;

constexpr char kProbeMode[] = "a+";  // creates a missing file, and does not change an existing one
constexpr char kProbeName[] = "%%%%-%%%%-%%%%-%%%%";

std::string environmentVariable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

bool canOpen(const std::string& path) {
    FILE* const stream = fileOpen(path, kProbeMode);
    if (stream == nullptr) return false;
    std::fclose(stream);
    return true;
}

bool canCreate(const std::string& path) {
    const bool opened = canOpen(path);
    fileRemove(path);
    return opened;
}

// Returns false without a try if there is no memory for the name of the new file.
bool canCreateIn(const bfs::path& folder) {
    try {
        boost::system::error_code error;
        const bfs::path probe = bfs::unique_path(folder / kProbeName, error);
        return !error && canCreate(probe.string());
    } catch (const std::bad_alloc&) {
        return false;
    }
}

}  // namespace

FILE* fileOpen(const std::string& path, const std::string& mode) { return std::fopen(path.c_str(), mode.c_str()); }

FILE* fileReopen(const std::string& path, const std::string& mode, FILE* stream) {
    return std::freopen(path.c_str(), mode.c_str(), stream);
}

int fileRename(const std::string& from, const std::string& to) { return std::rename(from.c_str(), to.c_str()); }

int fileRemove(const std::string& path) { return std::remove(path.c_str()); }

bool fileSize(const char* path, unsigned long& size) {
    struct stat status {};
    if (stat(path, &status) != 0) return false;
    size = static_cast<unsigned long>(status.st_size);
    return true;
}

bool fileSize(const std::string& path, unsigned long& size) { return fileSize(path.c_str(), size); }

void convertPathDelimitersForOS(std::string& path) { std::replace(path.begin(), path.end(), '\\', '/'); }

bfs::file_status fileStatus(const bfs::path& path, bool followSymlinks) noexcept {
    boost::system::error_code error;
    return followSymlinks ? bfs::status(path, error) : bfs::symlink_status(path, error);
}

bool fileExists(const bfs::path& path) noexcept {
    boost::system::error_code error;
    const bfs::file_status status = bfs::status(path, error);
    return bfs::exists(status) && status.type() != bfs::directory_file;
}

bool dirExists(const bfs::path& path) noexcept {
    boost::system::error_code error;
    const bfs::file_status status = bfs::status(path, error);
    return !error && status.type() == bfs::directory_file;
}

bfs::path makeAbsolute(const bfs::path& path, const bfs::path& base) noexcept {
    return path.has_root_directory() ? path : base / path;
}

std::string homeDirectory() {
    std::string home = environmentVariable("HOME");
    if (!home.empty()) return home;
    std::string user = environmentVariable("USERNAME");
    if (user.empty()) user = environmentVariable("USER");
    return user.empty() ? "" : "/home/" + user;
}

bool isFileOrDirWritable(const bfs::path& path) noexcept {
    boost::system::error_code error;
    const bfs::file_status status = bfs::status(path, error);
    if (!bfs::exists(status)) return canCreate(path.string());
    return status.type() == bfs::directory_file ? canCreateIn(path) : canOpen(path.string());
}

}  // namespace vexa::filesystem
