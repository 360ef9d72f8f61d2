#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "trace/TraceFile.h"
#include "vexastandin/Observer.h"

namespace vexa::runner {

/// An observer that writes a text file, one line per call. The file has no times and no addresses, so equal runs write
/// equal files.
///
///     1  sweep.macro:3: STATS MEAN
///     1    VexaUtilLockStart(STATS)
///     1    => accepted
///     1    ! error: VexaUtilLockStart has no matching VexaUtilLockFinish ... [unbalanced-lock] (first:
///     VexaUtilLockStart)
///
/// Each line starts with the number of its thread. The line of a call is written when the call returns; its findings
/// follow. The order of the lines of several threads may differ from run to run.
///
/// Errors:  OutputError from construction and finish(); after a failed write nothing more is written.
/// Threads: as an observer.
class TextTrace : public standin::ObserverInterface {
public:
    explicit TextTrace(const std::string& path, Append_e how = Append_e::BySystemCall);

    void entryBegan(const standin::EntryEvent& entry) override;
    void entryEnded(const standin::EntryEvent& entry) override;
    void callBegan(const standin::CallEvent& call) override;
    void callEnded(const standin::CallEvent& call) override;
    void findingMade(const standin::Finding& finding) override;
    void statusChanged(const standin::StatusLine& line) override;

    /// Writes how the run ended. Later events are ignored.
    void finish(int exitStatus, const std::string& outcome);

private:
    // A thread that is in a call of the host.
    struct Calling {
        std::size_t open = 0;
        std::vector<std::string> findings;  // findings about its calls, which are written after the calls
    };

    TraceFile m_file;
    std::map<long, Calling> m_calling;  // by EventThread
    std::size_t m_depth = 0;            // of entries
};

}  // namespace vexa::runner
