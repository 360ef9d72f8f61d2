#include "system/files/PathFromHere.h"

#include <filesystem>
#include <system_error>

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

}  // namespace

std::string pathFromHere(const std::string& file) {
    std::error_code error;
    const fs::path path = fs::absolute(file, error).lexically_normal();
    const fs::path folder = fs::weakly_canonical(path.parent_path(), error);
    const fs::path whole = (error ? path.parent_path() : folder) / path.filename();
    const fs::path relative = whole.lexically_relative(fs::current_path(error));
    const bool isBelow = !relative.empty() && *relative.begin() != "..";
    return (isBelow ? relative : whole).string();
}

}  // namespace vexa::runner
