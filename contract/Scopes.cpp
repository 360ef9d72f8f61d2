#include "contract/Scopes.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>

namespace vexa::standin {
namespace {

struct Kind {
    const char* rule;
    const char* begin;
    const char* end;
};

constexpr Kind kKinds[] = {
    {"unbalanced-lock", "VexaUtilLockStart", "VexaUtilLockFinish"},
    {"unbalanced-auxdata", "VexaUtilAuxDataBeginAssign", "VexaUtilAuxDataEndAssign"},
    {"unbalanced-marking", "VexaUtilDataSetSuspendMarking(1)", "VexaUtilDataSetSuspendMarking(0)"},
    {"unbalanced-solution-time", "VexaUtilZoneSolutionTimeModificationBegin",
     "VexaUtilZoneSolutionTimeModificationEnd"},
};

std::size_t indexOf(Scope_e kind) { return static_cast<std::size_t>(kind); }

std::string noMatch(const char* call, const char* counterpart) {
    return std::string(call) + " has no matching " + counterpart;
}

}  // namespace

void Scopes::begin(Scope_e kind, const Moment& now, const AddOnList_s* identity) {
    m_open[indexOf(kind)].push_back({identity, now.withStack()});
}

void Scopes::end(Scope_e kind, const Moment& now, FindingLog& findings, const AddOnList_s* identity) {
    const Kind& names = kKinds[indexOf(kind)];
    std::vector<Open>& open = m_open[indexOf(kind)];
    if (open.empty()) {
        findings.add(names.rule, noMatch(names.end, names.begin), now);
        return;
    }
    auto ended = std::find_if(open.rbegin(), open.rend(), [=](const Open& one) { return one.identity == identity; });
    if (ended == open.rend()) {
        ended = open.rbegin();
        findings.add("lock-identity", "VexaUtilLockFinish got another identity than VexaUtilLockStart", now,
                     &ended->since);
    }
    open.erase(std::next(ended).base());
}

void Scopes::endOfEntry(const Moment& now, FindingLog& findings) const {
    for (std::size_t i = 0; i != m_open.size(); ++i) {
        const std::vector<Open>& open = m_open[i];
        if (open.empty()) continue;
        std::string message = noMatch(kKinds[i].begin, kKinds[i].end) + " in " + nameOf(*now.entry);
        if (open.size() > 1) message += ", " + std::to_string(open.size()) + " times";
        findings.add(kKinds[i].rule, std::move(message), now, &open.front().since, open.size());
    }
}

}  // namespace vexa::standin
