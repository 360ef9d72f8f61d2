#include "system/files/ProgramFiles.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <system_error>

namespace vexa::runner {

namespace fs = std::filesystem;

bool isExecutableFile(const std::string& path) {
    std::error_code error;
    return fs::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

std::string findProgram(const std::string& name) {
    if (name.find('/') != std::string::npos) return name;
    const char* const path = std::getenv("PATH");
    const bool isSet = path != nullptr && *path != '\0';
    std::istringstream folders(isSet ? path : "/bin:/usr/bin");
    for (std::string folder; std::getline(folders, folder, ':');) {
        std::string file = (folder.empty() ? "." : folder) + '/' + name;
        if (isExecutableFile(file)) return file;
    }
    return "";
}

std::string fileBesideProgram(std::initializer_list<const char*> places) {
    std::error_code error;
    const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
    for (const char* const place : places) {
        const fs::path file = fs::weakly_canonical(folder / place, error);
        if (fs::is_regular_file(file, error)) return file;
    }
    return "";
}

}  // namespace vexa::runner
