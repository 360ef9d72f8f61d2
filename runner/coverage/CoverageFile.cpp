#include "coverage/CoverageFile.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <system_error>

#include "formats/JsonText.h"
#include "system/Descriptor.h"
#include "system/files/OutputTarget.h"
#include "system/files/WholeFile.h"
#include "system/files/WholeOutput.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kFormat = "vexa-standin coverage 1";
constexpr const char* kNoCoverage = "this is not a coverage file of vexa-standin";

Json jsonOf(const CommandCoverage& command) {
    Json calls = Json::object();
    for (const auto& [function, answers] : command.calls) calls[function] = answers;
    return {{"ends", command.ends}, {"options", command.options}, {"calls", calls}};
}

Json jsonOf(const Share& share) { return {{"seen", share.seen}, {"all", share.all}}; }

Json jsonOf(const CoverageFigures& figures) {
    return {{"calls", jsonOf(figures.calls)},
            {"outcomes", jsonOf(figures.outcomes)},
            {"rules", jsonOf(figures.rules)},
            {"percent", figures.total().percent()}};
}

// The parts of a JSON value. Each throws CoverageError if the value has another type.
template <class Part>
const Part& as(const JsonValue& value) {
    if (const Part* const part = std::get_if<Part>(&value.value)) return *part;
    throw CoverageError(kNoCoverage);
}

const JsonValue* member(const JsonValue& object, const std::string& name) {
    for (const JsonMember& one : as<JsonValue::Object>(object)) {
        if (one.name == name) return &one.value;
    }
    return nullptr;
}

void addNames(Names& names, const JsonValue* list) {
    if (list == nullptr) return;
    for (const JsonValue& name : as<JsonValue::Array>(*list)) names.insert(as<std::string>(name));
}

void addCommand(CommandCoverage& command, const JsonValue& json) {
    addNames(command.ends, member(json, "ends"));
    addNames(command.options, member(json, "options"));
    const JsonValue* const calls = member(json, "calls");
    if (calls == nullptr) return;
    for (const JsonMember& call : as<JsonValue::Object>(*calls)) addNames(command.calls[call.name], &call.value);
}

Coverage coverageOf(const JsonValue& json) {
    const JsonValue* const format = member(json, "format");
    if (format == nullptr || as<std::string>(*format) != kFormat) throw CoverageError(kNoCoverage);
    Coverage coverage;
    addNames(coverage.rules, member(json, "rules"));
    const JsonValue* const commands = member(json, "commands");
    if (commands == nullptr) return coverage;
    for (const JsonMember& command : as<JsonValue::Object>(*commands)) {
        addCommand(coverage.commands[command.name], command.value);
    }
    return coverage;
}

// Returns nothing if there is no file.
Coverage contentOf(const std::string& path) {
    try {
        const std::string text = readWholeFile(path);
        return text.empty() ? Coverage() : coverageIn(text, path);
    } catch (const std::system_error& error) {
        if (error.code() == std::errc::no_such_file_or_directory) return {};
        refuseOutput(path, "cannot be read: " + error.code().message());
    } catch (const CoverageError&) {
        refuseOutput(path, "it exists, and is not a coverage file");
    }
}

// Locks the folder and not the file, because another process may replace the file. The lock ends with the object.
Descriptor lockedFolderOf(const std::string& path) {
    const std::string folder = std::filesystem::path(outputTarget(path)).parent_path();
    Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const auto refuse = [&] {
        refuseOutput(path, "cannot lock its folder: " + std::generic_category().message(errno));
    };
    if (!descriptor.isOpen()) refuse();
    while (flock(descriptor.get(), LOCK_EX) != 0) {
        if (errno != EINTR) refuse();
    }
    return descriptor;
}

}  // namespace

std::string coverageText(const Coverage& coverage) {
    Json commands = Json::object();
    for (const auto& [name, command] : coverage.commands) commands[name] = jsonOf(command);
    const Json json = {{"format", kFormat},
                       {"figures", jsonOf(figuresOf(coverage))},
                       {"commands", commands},
                       {"rules", coverage.rules}};
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

Coverage coverageIn(const std::string& text, const std::string& name) {
    try {
        return coverageOf(parseJson(text));
    } catch (const JsonError& error) {
        throw CoverageError(name + ": " + kNoCoverage + ": " + error.what());
    } catch (const CoverageError& error) {
        throw CoverageError(name + ": " + error.what());
    }
}

void checkCoverageFile(const std::string& path) {
    if (isStream(path)) refuseOutput(path, "expected a file");
    contentOf(path);
}

void addToCoverageFile(const std::string& path, const Coverage& more) {
    const Descriptor lock = lockedFolderOf(path);
    Coverage coverage = contentOf(path);
    merge(coverage, more);
    WholeOutput(path).replace(coverageText(coverage));
}

}  // namespace vexa::runner
