#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "vexastandin/Observer.h"

namespace vexa::runner {

/// Turns events into the lines of a text trace. Each function returns the lines that its event completes, with their
/// line feeds; often none or one.
///
///     1  sweep.macro:3: STATS MEAN
///     1    VexaUtilLockStart(STATS)
///     1    => accepted
///     1    ! error: VexaUtilLockStart has no matching VexaUtilLockFinish ... [unbalanced-lock] (first:
///     VexaUtilLockStart)
///
/// Each line starts with the number of its thread. The line of a call is complete when the call returns; its findings
/// follow.
///
/// Threads: one at a time. The functions ask which thread the event belongs to: call them on that thread.
class TraceLines {
public:
    std::string entryBegan(const standin::EntryEvent& entry);
    std::string entryEnded(const standin::EntryEvent& entry);
    void callBegan();
    std::string callEnded(const standin::CallEvent& call);
    std::string findingMade(const standin::Finding& finding);

private:
    // A thread that is in a call of the host.
    struct Calling {
        std::size_t open = 0;
        std::vector<std::string> findings;  // findings about its calls, which follow the calls
    };

    std::map<long, Calling> m_calling;  // by EventThread
    std::size_t m_depth = 0;            // of entries
};

}  // namespace vexa::runner
