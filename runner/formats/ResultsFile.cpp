#include "formats/ResultsFile.h"

#include <nlohmann/json.hpp>

#include "terminal/Console.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;

std::string lineOf(const Json& json) {
    return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
}

Json listOf(const std::vector<standin::Finding>& findings) {
    Json list = Json::array();
    for (const standin::Finding& finding : findings) {
        list.push_back({{"rule", finding.rule},
                        {"severity", nameOf(finding.severity)},
                        {"addOn", finding.addOnId},
                        {"message", finding.message}});
    }
    return list;
}

}  // namespace

std::string resultLine(const MacroCommand& command, const standin::CommandResult& result,
                       std::chrono::duration<double> time, const std::vector<standin::Finding>& findings) {
    return lineOf({{"place", command.place},
                   {"addOn", command.addOnId},
                   {"command", command.text},
                   {"accepted", result.accepted},
                   {"error", withoutTrailingBlanks(result.error)},
                   {"seconds", time.count()},
                   {"findings", listOf(findings)}});
}

std::string endLine(const std::string& macroFile, ExitStatus_e status, const std::vector<standin::Finding>& findings,
                    const std::string& error) {
    Json end = {{"macroFile", macroFile}, {"exitStatus", static_cast<int>(status)}, {"findings", listOf(findings)}};
    if (!error.empty()) end["error"] = error;
    return lineOf(end);
}

}  // namespace vexa::runner
