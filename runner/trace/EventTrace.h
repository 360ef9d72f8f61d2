#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "trace/EventText.h"
#include "trace/ScopeTracks.h"
#include "trace/TraceFile.h"
#include "vexastandin/Observer.h"

namespace vexa::runner {

/// What a trace says of the run that it is of.
struct RunFacts {
    std::string tool;                                                       ///< the program and its version
    std::string macroFile;                                                  ///< as it was named
    std::vector<std::pair<std::string, std::vector<std::string>>> options;  ///< those given, with their values
    bool isStrict = false;                ///< whether breaches of the contract count, and recordings are played back
    bool hasTimeLimit = false;            ///< whether commands that do not return are found
    std::vector<std::string> suppressed;  ///< the rules whose breaches pass
};

/// Writes what it observes to a file in the Chrome trace event format: a JSON array, an event a line.
///
/// Commands, and loading and unloading of add-ons, are spans, and the calls in them; the host's scopes have tracks of
/// their own; the percentage of the status line is a counter, a finding an instant. Each event is in the file when the
/// operation returns. The array is closed by finish() only, and viewers do without.
///
/// Errors:  OutputError from construction and finish(); when the file cannot be written any more, the rest is left out.
/// Threads: as an observer.
class EventTrace : public standin::ObserverInterface {
public:
    EventTrace(const std::string& path, const RunFacts& facts);

    void entryBegan(const standin::EntryEvent& entry) override;
    void entryEnded(const standin::EntryEvent& entry) override;
    void callBegan(const standin::CallEvent& call) override;
    void callEnded(const standin::CallEvent& call) override;
    void findingMade(const standin::Finding& finding) override;
    void statusChanged(const standin::StatusLine& line) override;

    /// Ends what is open, and writes how the run ended. What is observed afterwards is left out.
    void finish(int exitStatus, const std::string& outcome);

private:
    template <class Action>
    void write(const Action& action);
    void handTo(LiveFile& file);
    void writeHeader(const RunFacts& facts);
    void writeEdge(const ScopeEdge& edge);
    void writeEnd(int exitStatus, const std::string& outcome);
    void beginSpan(long thread, std::size_t threadNumber, std::string name);
    std::optional<std::string> endSpan(long thread);

    TraceFile m_file;
    EventText m_text;  // what is to be written next
    ScopeTracks m_scopes;
    std::map<long, std::vector<std::string>> m_openSpans;  // their names, by track; every track that has a name
};

}  // namespace vexa::runner
