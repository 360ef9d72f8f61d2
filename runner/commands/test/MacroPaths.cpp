#include "commands/test/MacroPaths.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

// Returns the macros in a folder, sorted by name. Refuses a file to compare with that has no macro, because it would
// never be compared.
std::vector<std::string> macrosIn(const fs::path& folder) {
    std::vector<std::string> macros;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        const fs::path& path = entry.path();
        if (path.extension() == kMacro) macros.push_back(path.string());
        std::error_code isUnknown;
        if (isBesideMacro(path.string()) && !fs::exists(fs::path(path).replace_extension(kMacro), isUnknown)) {
            throw PathError(path.string() + ": there is no macro " + path.stem().string() + kMacro + " in this folder");
        }
    }
    if (error) throw PathError(folder.string() + ": cannot be read: " + error.message());
    if (macros.empty()) throw PathError(folder.string() + ": it has no macros; a macro is a file NAME" + kMacro);
    std::sort(macros.begin(), macros.end());
    return macros;
}

}  // namespace

std::vector<std::string> macrosOf(const std::vector<std::string>& paths) {
    std::vector<std::string> macros;
    for (const std::string& path : paths) {
        std::error_code error;
        const fs::file_status status = fs::status(path, error);
        const bool isOfNoFile = error && status.type() != fs::file_type::not_found;
        if (isOfNoFile) throw PathError(path + ": cannot be read: " + error.message());
        if (fs::is_directory(status)) {
            const std::vector<std::string> found = macrosIn(path);
            macros.insert(macros.end(), found.begin(), found.end());
        } else if (fs::path(path).extension() != kMacro) {
            const char* const missing = fs::exists(status) ? "" : "no such file; ";
            throw PathError(path + ": " + missing + "expected a folder, or a macro NAME" + kMacro);
        } else {
            macros.push_back(path);
        }
    }
    return macros;
}

std::string besideOf(const std::string& macro, const char* extension) {
    return fs::path(macro).replace_extension(extension).string();
}

bool isBesideMacro(const std::string& file) {
    const std::string extension = fs::path(file).extension();
    return std::find(std::begin(kBesideMacro), std::end(kBesideMacro), extension) != std::end(kBesideMacro);
}

}  // namespace vexa::runner
