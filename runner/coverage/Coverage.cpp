#include "coverage/Coverage.h"

#include <algorithm>

#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

using standin::ResultKind_e;

// Returns true if some were new.
bool add(Names& names, const Names& more) {
    const std::size_t before = names.size();
    names.insert(more.begin(), more.end());
    return names.size() != before;
}

std::size_t countSeen(const Names& answers, ResultKind_e kind) {
    const std::vector<std::string>& all = answersOf(kind);
    return static_cast<std::size_t>(
        std::count_if(all.begin(), all.end(), [&](const std::string& answer) { return answers.count(answer) != 0; }));
}

}  // namespace

bool merge(Coverage& coverage, const Coverage& more) {
    bool isNew = add(coverage.rules, more.rules);
    for (const auto& [name, from] : more.commands) {
        const auto [at, isFirst] = coverage.commands.try_emplace(name);
        CommandCoverage& command = at->second;
        isNew |= isFirst;
        isNew |= add(command.ends, from.ends);
        isNew |= add(command.options, from.options);
        for (const auto& [function, answers] : from.calls) {
            isNew |= command.calls.count(function) == 0;
            isNew |= add(command.calls[function], answers);
        }
    }
    return isNew;
}

const std::vector<std::string>& answersOf(ResultKind_e kind) {
    static const std::vector<std::string> none;
    static const std::vector<std::string> ofHandle = {"handle", "null"};
    static const std::vector<std::string> ofBoolean = {"1", "0"};
    static const std::vector<std::string> ofReturnCode = {"value", "no value"};
    switch (kind) {
        case ResultKind_e::None: return none;
        case ResultKind_e::Handle: return ofHandle;
        case ResultKind_e::Boolean: return ofBoolean;
        case ResultKind_e::ReturnCode: return ofReturnCode;
    }
    return none;
}

std::string answerIn(const std::string& result, ResultKind_e kind) {
    if (kind == ResultKind_e::None) return "";
    const bool isFailure = (kind == ResultKind_e::Handle && result == "null") ||
                           (kind == ResultKind_e::Boolean && result == "0") ||
                           (kind == ResultKind_e::ReturnCode && result != "GetValueReturnCode_Ok");
    return answersOf(kind).at(isFailure ? 1 : 0);
}

std::map<std::string, Names, std::less<>> callsOf(const Coverage& coverage) {
    std::map<std::string, Names, std::less<>> calls;
    for (const auto& [name, command] : coverage.commands) {
        for (const auto& [function, answers] : command.calls) add(calls[function], answers);
    }
    return calls;
}

CoverageFigures figuresOf(const Coverage& coverage) {
    CoverageFigures figures;
    const auto calls = callsOf(coverage);
    for (const standin::HostFunctionInfo& function : standin::hostFunctions()) {
        const auto call = calls.find(function.name);
        figures.calls.all += 1;
        figures.outcomes.all += answersOf(function.result).size();
        if (call == calls.end()) continue;
        figures.calls.seen += 1;
        figures.outcomes.seen += countSeen(call->second, function.result);
    }
    for (const standin::Rule& rule : standin::rules()) {
        figures.rules.all += 1;
        figures.rules.seen += coverage.rules.count(rule.name);
    }
    return figures;
}

}  // namespace vexa::runner
