#pragma once

#include "contract/FindingLog.h"
#include "contract/HandleLedger.h"
#include "contract/HostStrings.h"
#include "contract/Moment.h"

namespace vexa::standin {

/// Checks the contents that add-ons write to the host's strings, and the error messages that they return.
class StringRules {
public:
    StringRules(HandleLedger& ledger, const HostStringsInterface& strings) : m_ledger(ledger), m_strings(strings) {}

    void freeBegan(const char* string, const Moment& now, FindingLog& findings) const;
    /// Checks the error message of a command. The host owns the string from then on.
    /// \param errMsg      null if the command set none.
    /// \param hadNoMemory true if the host had no memory for a string of this command.
    void commandEnded(bool accepted, const char* errMsg, bool hadNoMemory, const Moment& now, FindingLog& findings);
    /// Checks the strings that were allocated in this entry and not freed.
    void endOfEntry(const Moment& now, FindingLog& findings) const;

private:
    void judgeOverrun(const char* string, const HostStringState& state, const Moment& now, FindingLog& findings) const;
    void takeOver(const char* errMsg, const Moment& now, FindingLog& findings);

    HandleLedger& m_ledger;
    const HostStringsInterface& m_strings;
};

}  // namespace vexa::standin
