// Reads project files. A file written from the settings of an accepted file must be read back to the same settings. A
// refusal must be one line that starts with the file.

#include <cstdio>

#include "Fuzz.h"
#include "formats/ProjectFile.h"
#include "options/UsageError.h"

namespace vexa::fuzz {
namespace {

using runner::ContractOptions;

constexpr const char* kPath = "folder/p.toml";
constexpr const char* kFolder = "folder/";

std::string quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        char escape[8];
        const auto byte = static_cast<unsigned char>(c);
        const bool isPlain = byte >= ' ' && byte != 0x7f && c != '"' && c != '\\';
        std::snprintf(escape, sizeof escape, "\\u%04x", byte);
        quoted += isPlain ? std::string(1, c) : escape;
    }
    return quoted + '"';
}

std::string truthText(bool truth) { return truth ? "true" : "false"; }

// Returns the path relative to the folder of the project file.
std::string fromFolder(const std::string& path) {
    const std::size_t size = std::string(kFolder).size();
    if (path.compare(0, size, kFolder) != 0) return "../" + path;
    return path.size() == size ? "." : path.substr(size);
}

std::string written(const ContractOptions& options) {
    std::string text;
    if (options.strict) text += "strict = " + truthText(*options.strict) + '\n';
    if (options.warningsAsErrors) text += "warnings-as-errors = " + truthText(*options.warningsAsErrors) + '\n';
    text += "suppress = [";
    for (const std::string& rule : options.suppressed) text += quoted(rule) + ',';
    text += "]\n";
    if (options.timeout) {
        char seconds[40];
        std::snprintf(seconds, sizeof seconds, "timeout = %.17e\n", options.timeout->count());
        text += seconds;
    }
    if (options.host) text += "host = " + quoted(fromFolder(*options.host));
    return text;
}

bool isSame(const ContractOptions& a, const ContractOptions& b) {
    return a.strict == b.strict && a.warningsAsErrors == b.warningsAsErrors && a.suppressed == b.suppressed &&
           a.timeout == b.timeout;
}

bool isRelative(const std::string& path) { return path.front() != '/'; }

void requireReadBack(const ContractOptions& options) {
    if (options.timeout) require(options.timeout->count() > 0 && options.timeout->count() <= 1e6, "a limit is a time");
    const std::string text = written(options);
    const ContractOptions again = runner::projectIn(text, kPath);
    require(isSame(options, again), "settings are read back unchanged", text);
    if (options.host && isRelative(*options.host)) require(options.host == again.host, "the host is the same", text);
}

void requireRefusal(const std::string& refusal) {
    require(refusal.compare(0, std::string(kPath).size() + 1, kPath + std::string(":")) == 0,
            "a refusal begins with the file", refusal);
    require(refusal.find_first_of("\r\n") == std::string::npos, "a refusal is one line", refusal);
    require(refusal.size() < 1000, "a refusal is short", refusal);
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    vexa::runner::ContractOptions options;
    try {
        options = vexa::runner::projectIn(textOf(data, size), kPath);
    } catch (const vexa::runner::UsageError& error) {
        requireRefusal(error.what());
        return 0;
    }
    requireReadBack(options);
    return 0;
}
