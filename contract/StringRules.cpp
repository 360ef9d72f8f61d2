#include "contract/StringRules.h"

namespace vexa::standin {

void StringRules::freeBegan(const char* string, const Moment& now, FindingLog& findings) const {
    judgeEnd(string, now, findings);
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
    for (const void* const string : m_ledger.living([&](const Entry& entry) { return &entry == now.entry.get(); })) {
        judgeEnd(static_cast<const char*>(string), now, findings);
    }
}

// Returns whether it was written within its size only.
bool StringRules::judgeEnd(const char* string, const Moment& now, FindingLog& findings) const {
    const auto found = m_strings.find(string);
    if (found == nullptr || found->isIntact()) return true;
    findings.add("string-overrun",
                 m_ledger.labelOf(string) + " has " + std::to_string(found->size()) +
                     (found->size() == 1 ? " byte" : " bytes") + ", but more bytes were written to it",
                 now, &m_ledger.originOf(string));
    return false;
}

void StringRules::takeOver(const char* errMsg, const Moment& now, FindingLog& findings) {
    if (m_ledger.isFreed(errMsg)) {
        findings.add("use-after-free", "the error message is a host string that was freed", now);
        return;
    }
    const auto string = m_strings.find(errMsg);
    if (string == nullptr || !m_ledger.isLiving(errMsg)) {
        findings.add("foreign-errmsg", "the error message is not a host string", now);
        return;
    }
    if (judgeEnd(errMsg, now, findings) && !string->isTerminated()) {
        findings.add("string-unterminated",
                     "the error message, " + m_ledger.labelOf(errMsg) + " of " + std::to_string(string->size()) +
                         (string->size() == 1 ? " byte" : " bytes") + ", has no terminating zero",
                     now, &m_ledger.originOf(errMsg));
    }
    m_ledger.freed(errMsg, now);
}

}  // namespace vexa::standin
