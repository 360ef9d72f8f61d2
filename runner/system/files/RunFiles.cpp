#include "system/files/RunFiles.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "system/files/OutputTarget.h"
#include "system/files/StandardStreams.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

constexpr const char* kInput = "/dev/stdin";
constexpr const char* kOutput = "/dev/stdout";
constexpr const char* kErrors = "/dev/stderr";

std::string placeOfInput(const std::string& path) {
    if (isStandardInput(path)) return kInput;
    std::error_code error;
    const fs::path place = fs::weakly_canonical(fs::absolute(path, error), error);
    return error ? path : place.string();
}

std::string placeOfOutput(const std::string& path) {
    if (isStandardOutput(path)) return kOutput;
    return isStream(path) ? fs::absolute(path).string() : outputTarget(path);
}

bool isOneFile(const std::string& place, const std::string& other) {
    std::error_code error;
    if (fs::is_character_file(place, error)) return false;
    return place == other || fs::equivalent(place, other, error);
}

}  // namespace

void RunFiles::read(const std::string& path) { m_files.push_back({path, placeOfInput(path)}); }

void RunFiles::read(const std::optional<std::string>& path) {
    if (path) read(*path);
}

void RunFiles::read(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) read(path);
}

void RunFiles::write(const std::string& path) {
    File output = {path, placeOfOutput(path)};
    refuseIfTaken(output);
    m_files.push_back(std::move(output));
}

void RunFiles::write(const std::optional<std::string>& path) {
    if (path) write(*path);
}

void RunFiles::refuseIfTaken(const File& output) const {
    const bool isStandard = output.place == kOutput;
    const auto refuse = [&](const std::string& name) {
        refuseOutput(output.name, "the command also uses it as " + name);
    };
    for (const File& file : m_files) {
        const bool isTwice = isStandard && file.place == kOutput;
        if (isTwice || isOneFile(output.place, file.place)) refuse(file.name);
    }
    // The user may redirect both to one file.
    if (isStandard) return;
    if (isOneFile(output.place, kOutput)) refuse(kStandardOutputName);
    if (isOneFile(output.place, kErrors)) refuse("<stderr>");
}

}  // namespace vexa::runner
