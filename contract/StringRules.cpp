#include "contract/StringRules.h"

namespace vexa::standin {

void StringRules::freeBegan(const char* string, const Moment& now, FindingLog& findings) const {
    judgeOverrun(string, m_strings.stateOf(string), now, findings);
}

void StringRules::commandEnded(bool accepted, const char* errMsg, bool hadNoMemory, const Moment& now,
                               FindingLog& findings) {
    if (errMsg != nullptr) {
        if (accepted) findings.add("errmsg-on-success", "the command succeeded, but set an error message", now);
        takeOver(errMsg, now, findings);
    } else if (!accepted && !hadNoMemory) {
        findings.add("missing-errmsg", "the command failed, but set no error message", now);
    }
}

void StringRules::endOfEntry(const Moment& now, FindingLog& findings) const {
    for (const void* const handle : m_ledger.living([&](const Entry& entry) { return &entry == now.entry.get(); })) {
        const char* const string = static_cast<const char*>(handle);
        judgeOverrun(string, m_strings.stateOf(string), now, findings);
    }
}

void StringRules::judgeOverrun(const char* string, const HostStringState& state, const Moment& now,
                               FindingLog& findings) const {
    if (state.isIntact) return;
    findings.add("string-overrun",
                 m_ledger.labelOf(string) + " has " + std::to_string(state.size) +
                     (state.size == 1 ? " byte" : " bytes") + ", but more bytes were written to it",
                 now, &m_ledger.originOf(string));
}

void StringRules::takeOver(const char* errMsg, const Moment& now, FindingLog& findings) {
    if (m_ledger.isFreed(errMsg)) {
        findings.add("use-after-free", "the error message is a host string that was freed", now);
        return;
    }
    if (!m_ledger.isLiving(errMsg)) {
        findings.add("foreign-errmsg", "the error message is not a host string", now);
        return;
    }
    const HostStringState state = m_strings.stateOf(errMsg);
    judgeOverrun(errMsg, state, now, findings);
    if (state.isIntact && !state.isTerminated) {
        findings.add("string-unterminated",
                     "the error message, " + m_ledger.labelOf(errMsg) + " of " + std::to_string(state.size) +
                         (state.size == 1 ? " byte" : " bytes") + ", has no terminating zero",
                     now, &m_ledger.originOf(errMsg));
    }
    m_ledger.freed(errMsg, now);
}

}  // namespace vexa::standin
