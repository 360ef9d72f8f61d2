#include "formats/ResultsFile.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "terminal/Console.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;

std::string lineOf(const Json& json) {
    return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
}

// Leaves the member out if nothing is known.
void addSource(Json& object, const char* name, const standin::SourcePlace& source) {
    if (source.text.empty()) return;
    object[name] = {{"function", source.function}, {"text", source.text}};
    if (source.line == 0) return;
    object[name]["file"] = source.file;
    object[name]["line"] = source.line;
}

// A run from the standard input cannot be repeated, and has no such commands.
void addDebug(Json& object, const std::string& command) {
    if (!command.empty()) object["debug"] = command;
}

Json listOf(const std::vector<ResultFinding>& findings) {
    Json list = Json::array();
    for (const auto& [finding, debug] : findings) {
        Json object = {{"rule", finding.rule},
                       {"severity", nameOf(finding.severity)},
                       {"addOn", finding.addOnId},
                       {"message", finding.message}};
        if (finding.opened) addSource(object, "opened", finding.opened->source);
        addSource(object, "source", finding.seen.source);
        addDebug(object, debug);
        list.push_back(std::move(object));
    }
    return list;
}

Json objectOf(const Frame& frame) {
    return {{"function", frame.function},
            {"file", frame.file},
            {"line", frame.line},
            {"object", frame.object},
            {"offset", frame.offset}};
}

Json objectOf(const ThreadStack& stack) {
    Json frames = Json::array();
    for (const Frame& frame : stack.frames) frames.push_back(objectOf(frame));
    return {{"thread", stack.thread}, {"frames", frames}, {"leftOut", stack.leftOut}};
}

// Adds what another process read about a crash or a hang.
void add(const StackReport& report, Json& line) {
    if (report.isEmpty()) return;
    Json threads = Json::array();
    for (const ThreadStack& stack : report.threads) threads.push_back(objectOf(stack));
    Json& stacks = line["stacks"];
    stacks = {{"signal", report.signal}, {"fault", report.fault}, {"threads", threads}, {"problem", report.problem}};
    if (const Frame* const own = report.ownFrame()) stacks["at"] = objectOf(*own);
}

// Return the member of an object, or a default if it is missing or has another type.
std::string textIn(const Json& object, const char* name) {
    const auto member = object.find(name);
    return member != object.end() && member->is_string() ? member->get<std::string>() : "";
}
double numberIn(const Json& object, const char* name) {
    const auto member = object.find(name);
    return member != object.end() && member->is_number() ? member->get<double>() : 0;
}

constexpr const char* kPlaceMember = "place";
constexpr const char* kMacroFileMember = "macroFile";
constexpr int kHighestStatus = 255;

// Returns nothing if it is not an exit status.
std::optional<int> statusIn(const Json& object) {
    const auto member = object.find("exitStatus");
    if (member == object.end() || !member->is_number_unsigned()) return std::nullopt;
    const auto status = member->get<std::uint64_t>();
    if (status > kHighestStatus) return std::nullopt;
    return static_cast<int>(status);
}

}  // namespace

std::string resultLine(const MacroCommand& command, const standin::CommandResult& result,
                       std::chrono::duration<double> time, const ResultDetails& details) {
    Json line = {{kPlaceMember, command.place},
                 {"addOn", command.addOnId},
                 {"command", command.text},
                 {"accepted", result.accepted},
                 {"error", withoutTrailingBlanks(result.error)},
                 {"seconds", time.count()},
                 {"findings", listOf(details.findings)}};
    if (!details.suggestion.empty()) line["suggestion"] = details.suggestion;
    addSource(line, "source", result.place.source);
    addDebug(line, details.debug);
    add(details.stacks, line);
    return lineOf(line);
}

std::string endLine(const std::string& macroFile, ExitStatus_e status, const ResultDetails& details,
                    const std::string& error) {
    Json end = {{kMacroFileMember, macroFile},
                {"exitStatus", static_cast<int>(status)},
                {"findings", listOf(details.findings)}};
    if (!error.empty()) end["error"] = error;
    addDebug(end, details.debug);
    add(details.stacks, end);
    return lineOf(end);
}

std::string nameInResults(const std::string& macroFile) {
    return Json::parse(lineOf(Json(macroFile))).get<std::string>();
}

std::optional<ResultLine> parseResultLine(const std::string& line) {
    const Json object = Json::parse(line, nullptr, false);
    if (!object.is_object()) return std::nullopt;
    ResultLine read;
    read.exitStatus = statusIn(object);
    read.name = textIn(object, read.exitStatus ? kMacroFileMember : kPlaceMember);
    if (read.name.empty()) return std::nullopt;
    const auto accepted = object.find("accepted");
    read.isAccepted = accepted == object.end() || *accepted != false;
    read.error = textIn(object, "error");
    read.seconds = numberIn(object, "seconds");
    return read;
}

bool isStartOfResultLine(std::string_view text) {
    const auto isStartOf = [text](const char* member) {
        const std::string start = std::string("{\"") + member + "\":\"";
        const std::size_t size = std::min(text.size(), start.size());
        return text.substr(0, size) == start.substr(0, size);
    };
    return isStartOf(kPlaceMember) || isStartOf(kMacroFileMember);
}

}  // namespace vexa::runner
