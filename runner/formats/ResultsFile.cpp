#include "formats/ResultsFile.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "session/RunNotes.h"
#include "system/files/OutputTarget.h"
#include "terminal/Console.h"
#include "text/SeverityName.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;

std::string lineOf(const Json& json) {
    return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
}

// The findings from the `done`th on. No more than ten of a rule and add-on are kept, so there are few.
Json newFindings(const standin::Host& host, std::size_t& done) {
    const std::vector<standin::Finding> findings = host.violations();
    Json list = Json::array();
    for (; done < findings.size(); ++done) {
        const standin::Finding& finding = findings[done];
        list.push_back({{"rule", finding.rule},
                        {"severity", nameOf(finding.severity)},
                        {"addOn", finding.addOnId},
                        {"message", finding.message}});
    }
    return list;
}

Json commandRecord(const CommandOutcome& outcome, Json findings) {
    return {{"place", outcome.place},         {"addOn", outcome.addOnId}, {"command", outcome.command},
            {"accepted", outcome.accepted},   {"error", outcome.error},   {"seconds", outcome.seconds},
            {"findings", std::move(findings)}};
}

Json endRecord(ExitStatus_e status, const std::string& macroFile, Json findings) {
    return {{"macroFile", macroFile}, {"exitStatus", static_cast<int>(status)}, {"findings", std::move(findings)}};
}

}  // namespace

void Results::add(const CommandOutcome& outcome, const standin::Host& host) {
    if (m_notes != nullptr) m_notes->tell(kResultNote, lineOf(commandRecord(outcome, newFindings(host, m_findings))));
}

void Results::finish(ExitStatus_e status, const std::string& macroFile, const standin::Host& host) {
    if (m_notes != nullptr)
        m_notes->tell(kEndNote, lineOf(endRecord(status, macroFile, newFindings(host, m_findings))));
}

std::string linesOfDeath(const CommandOutcome& outcome, ExitStatus_e status, const std::string& macroFile) {
    const std::string command = outcome.addOnId.empty() ? "" : lineOf(commandRecord(outcome, Json::array()));
    Json end = endRecord(status, macroFile, Json::array());
    end["error"] = outcome.error;
    return command + lineOf(end);
}

}  // namespace vexa::runner
