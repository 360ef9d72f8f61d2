#include "commands/results/ResultsSummary.h"

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "formats/ResultsFile.h"
#include "text/Counted.h"
#include "text/Printable.h"
#include "text/Seconds.h"

namespace vexa::runner {
namespace {

constexpr const char* kNoResult = "no result: it was not run, or the runner was killed";

bool isSuccess(int exitStatus) { return exitStatus == static_cast<int>(ExitStatus_e::AllWell); }

std::string meaningOf(int exitStatus, const std::string& error) {
    const std::string meaning = runner::meaningOf(static_cast<ExitStatus_e>(exitStatus));
    const std::string text = meaning.empty() ? "exit status " + std::to_string(exitStatus) : meaning;
    return error.empty() ? text : text + " (" + error + ')';
}

// A failure is what the macro reports; an error is what kept it from doing so.
JunitOutcome_e outcomeOf(int exitStatus) {
    switch (static_cast<ExitStatus_e>(exitStatus)) {
        case ExitStatus_e::AllWell: return JunitOutcome_e::Passed;
        case ExitStatus_e::CommandFailed:
        case ExitStatus_e::ContractViolated: return JunitOutcome_e::Failure;
        default: return JunitOutcome_e::Error;
    }
}

JunitCase caseOf(const std::string& macroFile) {
    const std::filesystem::path path(macroFile);
    JunitCase test;
    test.className = path.parent_path().string();
    test.name = path.stem().string();
    return test;
}

std::string lineOf(const std::string& name, const std::string& text) {
    return "    " + printableLine(name + ": " + text) + '\n';
}

}  // namespace

void ResultsSummary::expect(const std::vector<std::string>& macroFiles) {
    m_hasList = true;
    for (const std::string& file : macroFiles) ++macroOf(nameInResults(file)).listed;
}

void ResultsSummary::add(const MacroResult& result, const std::string& resultsFile) {
    m_commands += result.commands;
    m_seconds += result.seconds;
    if (result.macroFile.empty()) {
        m_cutOff.push_back(resultsFile);
        return;
    }
    Macro& macro = macroOf(result.macroFile);
    if (result.exitStatus) {
        macro.results.push_back({*result.exitStatus, result.seconds, result.error, result.failures});
    } else {
        macro.isCutOff = true;
    }
}

std::string ResultsSummary::text() const {
    std::size_t succeeded = 0;
    std::size_t failed = 0;
    std::size_t missing = 0;
    std::size_t unexpected = 0;
    std::string problems;
    for (const Macro& macro : m_macros) {
        for (const Result& result : macro.results) {
            ++(isSuccess(result.exitStatus) ? succeeded : failed);
            if (!isSuccess(result.exitStatus))
                problems += lineOf(macro.name, meaningOf(result.exitStatus, result.error));
        }
        const std::string why = whyIncomplete(macro);
        if (why.empty()) continue;
        ++(macro.results.empty() ? missing : unexpected);
        problems += lineOf(macro.name, why);
    }
    for (const std::string& file : m_cutOff) problems += lineOf(file, "the end is missing: the runner was killed");
    std::string counts = std::to_string(m_macros.size()) + " macro files, " + std::to_string(succeeded + failed) +
                         " results: " + std::to_string(succeeded) + " succeeded, " + std::to_string(failed) +
                         " failed\n" + std::to_string(missing) + " macro files without a result";
    if (m_hasList) counts += ", " + std::to_string(unexpected) + " with unexpected results";
    return counts + '\n' + std::to_string(m_commands) + " commands in " +
           decimalSeconds(std::chrono::duration<double>(m_seconds), 1) + " s\n" + problems;
}

ExitStatus_e ResultsSummary::status() const {
    int status = 0;
    bool isIncomplete = !m_hasList && !m_cutOff.empty();
    for (const Macro& macro : m_macros) {
        for (const Result& result : macro.results) status = std::max(status, result.exitStatus);
        isIncomplete |= !whyIncomplete(macro).empty();
    }
    if (isIncomplete) status = std::max(status, static_cast<int>(ExitStatus_e::BadUsageOrInput));
    return static_cast<ExitStatus_e>(status);
}

std::vector<JunitCase> ResultsSummary::cases() const {
    std::vector<JunitCase> cases;
    for (const Macro& macro : m_macros) {
        for (const Result& result : macro.results) {
            JunitCase& test = cases.emplace_back(caseOf(macro.name));
            test.seconds = result.seconds;
            test.outcome = outcomeOf(result.exitStatus);
            test.type = "exit status " + std::to_string(result.exitStatus);
            test.message = meaningOf(result.exitStatus, result.error);
            test.text = result.failures;
        }
        const std::string why = whyIncomplete(macro);
        if (why.empty()) continue;
        JunitCase& test = cases.emplace_back(caseOf(macro.name));
        test.outcome = JunitOutcome_e::Error;
        test.type = "results";
        test.message = why;
    }
    return cases;
}

ResultsSummary::Macro& ResultsSummary::macroOf(const std::string& name) {
    const auto [at, isNew] = m_indices.try_emplace(name, m_macros.size());
    if (isNew) m_macros.emplace_back().name = name;
    return m_macros[at->second];
}

// Returns an empty text if the macro file has the expected results. Without a list, any number is expected.
std::string ResultsSummary::whyIncomplete(const Macro& macro) const {
    const std::size_t count = macro.results.size();
    if (!m_hasList) return count == 0 ? kNoResult : "";
    if (count == macro.listed) return "";
    if (macro.listed == 0) return "it has a result, and is not in the list";
    if (count == 0) return kNoResult;
    return std::to_string(count) + " results; it is in the list " + counted(macro.listed, "time");
}

}  // namespace vexa::runner
