#include "formats/ResultsFile.h"

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

Json listOf(const std::vector<standin::Finding>& findings) {
    Json list = Json::array();
    for (const standin::Finding& finding : findings) {
        Json object = {{"rule", finding.rule},
                       {"severity", nameOf(finding.severity)},
                       {"addOn", finding.addOnId},
                       {"message", finding.message}};
        if (finding.opened) addSource(object, "opened", finding.opened->source);
        addSource(object, "source", finding.seen.source);
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

}  // namespace

std::string resultLine(const MacroCommand& command, const standin::CommandResult& result,
                       std::chrono::duration<double> time, const std::vector<standin::Finding>& findings,
                       const StackReport& stacks) {
    Json line = {{"place", command.place},
                 {"addOn", command.addOnId},
                 {"command", command.text},
                 {"accepted", result.accepted},
                 {"error", withoutTrailingBlanks(result.error)},
                 {"seconds", time.count()},
                 {"findings", listOf(findings)}};
    addSource(line, "source", result.place.source);
    add(stacks, line);
    return lineOf(line);
}

std::string endLine(const std::string& macroFile, ExitStatus_e status, const std::vector<standin::Finding>& findings,
                    const std::string& error, const StackReport& stacks) {
    Json end = {{"macroFile", macroFile}, {"exitStatus", static_cast<int>(status)}, {"findings", listOf(findings)}};
    if (!error.empty()) end["error"] = error;
    add(stacks, end);
    return lineOf(end);
}

}  // namespace vexa::runner
