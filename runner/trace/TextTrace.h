#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "trace/TraceFile.h"
#include "vexastandin/Observer.h"

namespace vexa::runner {

/// Writes what it observes to a file as text, a line a call, without times and addresses: two runs that do the same
/// write the same.
///
///     1  sweep.macro:3: STATS MEAN
///     1    VexaUtilLockStart(STATS)
///     1    => accepted
///     1    ! error: VexaUtilLockStart has no matching VexaUtilLockFinish ... [unbalanced-lock] (first:
///     VexaUtilLockStart)
///
/// Each line begins with the number of its thread. A call's line is written when it returns, findings about it behind
/// it. Lines of several threads stand in the order in which things happened, which may differ from run to run.
///
/// Errors:  OutputError from construction and finish(); when the file cannot be written any more, the rest is left out.
/// Threads: as an observer.
class TextTrace : public standin::ObserverInterface {
public:
    explicit TextTrace(const std::string& path);

    void entryBegan(const standin::EntryEvent& entry) override;
    void entryEnded(const standin::EntryEvent& entry) override;
    void callBegan(const standin::CallEvent& call) override;
    void callEnded(const standin::CallEvent& call) override;
    void findingMade(const standin::Finding& finding) override;
    void statusChanged(const standin::StatusLine& line) override;

    /// Writes how the run ended. What is observed afterwards is left out.
    void finish(int exitStatus, const std::string& outcome);

private:
    // A thread that is in a call of the host.
    struct Calling {
        std::size_t open = 0;
        std::vector<std::string> findings;  // about its calls, to stand behind them
    };

    TraceFile m_file;
    std::map<std::thread::id, Calling> m_calling;
    std::size_t m_depth = 0;  // of entries
};

}  // namespace vexa::runner
