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

}  // namespace

std::string resultLine(const MacroCommand& command, const standin::CommandResult& result,
                       std::chrono::duration<double> time, const std::vector<standin::Finding>& findings) {
    Json object = {{"place", command.place},
                   {"addOn", command.addOnId},
                   {"command", command.text},
                   {"accepted", result.accepted},
                   {"error", withoutTrailingBlanks(result.error)},
                   {"seconds", time.count()},
                   {"findings", listOf(findings)}};
    addSource(object, "source", result.place.source);
    return lineOf(object);
}

std::string endLine(const std::string& macroFile, ExitStatus_e status, const std::vector<standin::Finding>& findings,
                    const std::string& error) {
    Json end = {{"macroFile", macroFile}, {"exitStatus", static_cast<int>(status)}, {"findings", listOf(findings)}};
    if (!error.empty()) end["error"] = error;
    return lineOf(end);
}

}  // namespace vexa::runner
