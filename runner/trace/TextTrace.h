#pragma once

#include <string>

#include "trace/TraceFile.h"
#include "trace/TraceLines.h"
#include "vexastandin/Observer.h"

namespace vexa::runner {

/// An observer that writes the lines of TraceLines to a text file. The file has no times and no addresses, so equal
/// runs write equal files. The order of the lines of several threads may differ from run to run.
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
    TraceFile m_file;
    TraceLines m_lines;
};

}  // namespace vexa::runner
