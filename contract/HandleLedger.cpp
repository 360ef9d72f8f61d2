#include "contract/HandleLedger.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace vexa::standin {
namespace {

constexpr std::size_t kMostListed = 5;

std::string callText(const Moment& moment) {
    return "call " + std::to_string(moment.call) + " of " + nameOf(*moment.function);
}

}  // namespace

void HandleLedger::allocated(const void* handle, std::size_t number, const Moment& now) {
    m_living.insert_or_assign(handle, Living{number, now.withStack(), now.causeNow()});
    m_freed.erase(handle);
}

void HandleLedger::lent(const void* handle, const Moment& now) {
    m_living.insert_or_assign(handle, Living{++m_lent, now, nullptr, true});
    m_freed.erase(handle);
}

void HandleLedger::takenBack(const void* handle, const Moment& now) {
    if (isLiving(handle)) freed(handle, now);
}

bool HandleLedger::checkUse(const void* handle, const Moment& now, FindingLog& findings) const {
    if (isLiving(handle)) return true;
    judgeNotLiving(handle, now, findings, "use-after-free");
    return false;
}

bool HandleLedger::checkOwn(const void* handle, const Moment& now, FindingLog& findings,
                            const char* ruleOfFreed) const {
    const auto found = m_living.find(handle);
    if (found == m_living.end()) {
        judgeNotLiving(handle, now, findings, ruleOfFreed);
        return false;
    }
    if (!found->second.isHosts) return true;
    findings.add("foreign-handle",
                 std::string(standin::nameOf(*now.function)) + " was given " + labelOf(handle) +
                     ", which the add-on must not change or free",
                 now);
    return false;
}

void HandleLedger::freed(const void* handle, const Moment& now) {
    const auto found = m_living.find(handle);
    m_freed.insert_or_assign(handle, Freed{labelOf(found->second), found->second.since, now});
    m_living.erase(found);
}

std::string HandleLedger::labelOf(const void* handle) const { return labelOf(m_living.at(handle)); }

std::string HandleLedger::nameOf(const void* handle) const {
    const auto found = m_living.find(handle);
    if (found == m_living.end()) return "unknown";
    return (found->second.isHosts ? "style-" : "") + numbered(found->second);
}

std::string HandleLedger::labelOf(const Living& living) const {
    return living.isHosts ? std::string(m_kind.noun) + " of the host" : numbered(living);
}

std::string HandleLedger::numbered(const Living& living) const {
    return std::string(m_kind.label) + '#' + std::to_string(living.number);
}

std::vector<const void*> HandleLedger::living(const std::function<bool(const Entry&)>& isMeant) const {
    std::vector<const void*> handles;
    for (const auto& [handle, living] : m_living) {
        if (!living.isHosts && isMeant(*living.since.entry)) handles.push_back(handle);
    }
    std::sort(handles.begin(), handles.end(), [this](const void* left, const void* right) {
        return m_living.at(left).number < m_living.at(right).number;
    });
    return handles;
}

void HandleLedger::reportLeaks(const std::function<bool(const Entry&)>& isMeant, const Moment& now,
                               FindingLog& findings) {
    std::vector<const Living*> leaks;
    for (const void* const handle : living(isMeant)) {
        Living& leak = m_living.at(handle);
        if (!std::exchange(leak.isReported, true)) leaks.push_back(&leak);
    }
    if (leaks.empty()) return;
    std::string message = standin::nameOf(*now.entry) + " did not free " +
                          (leaks.size() == 1 ? m_kind.noun : std::to_string(leaks.size()) + ' ' + m_kind.plural) + ": ";
    for (std::size_t i = 0; i != std::min(leaks.size(), kMostListed); ++i) {
        message += (i == 0 ? "" : ", ") + labelOf(*leaks[i]) + " (call " + std::to_string(leaks[i]->since.call) + ')';
    }
    if (leaks.size() > kMostListed) message += " and " + std::to_string(leaks.size() - kMostListed) + " more";
    findings.add(m_kind.leakRule, std::move(message), now, &leaks.front()->since, leaks.size());
}

void HandleLedger::judgeNotLiving(const void* handle, const Moment& now, FindingLog& findings,
                                  const char* ruleOfFreed) const {
    const std::string function = now.function ? standin::nameOf(*now.function) : "the host";
    if (handle == nullptr) {
        findings.add("null-handle", function + " was given a null handle for " + m_kind.noun, now);
        return;
    }
    const auto found = m_freed.find(handle);
    if (found == m_freed.end()) {
        findings.add("foreign-handle", function + " was given a handle that is not one of the host's " + m_kind.plural,
                     now);
        return;
    }
    const Freed& freed = found->second;
    const std::string by = freed.until.call == 0 ? "" : " by " + callText(freed.until);
    findings.add(ruleOfFreed, function + " was given " + freed.label + ", which was already freed" + by, now,
                 &freed.since);
}

}  // namespace vexa::standin
