#pragma once

#include "contract/FindingLog.h"
#include "contract/HandleLedger.h"
#include "contract/HostStrings.h"
#include "contract/Moment.h"

namespace vexa::standin {

/// What is written to the host's strings, and what is handed over as an error message.
class StringRules {
public:
    StringRules(HandleLedger& ledger, const HostStringsInterface& strings) : m_ledger(ledger), m_strings(strings) {}

    void freeBegan(const char* string, const Moment& now, FindingLog& findings) const;
    /// Judges what a command left as its error message, and takes it over.
    /// \param hadNoMemory whether the host refused a string to the command.
    void commandEnded(bool accepted, const char* errMsg, bool hadNoMemory, const Moment& now, FindingLog& findings);
    /// Judges the strings that were allocated within the entry, and are still there.
    void endOfEntry(const Moment& now, FindingLog& findings) const;

private:
    void judgeOverrun(const char* string, const HostStringState& state, const Moment& now, FindingLog& findings) const;
    void takeOver(const char* errMsg, const Moment& now, FindingLog& findings);

    HandleLedger& m_ledger;
    const HostStringsInterface& m_strings;
};

}  // namespace vexa::standin
