#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "trace/CrashEvent.h"
#include "trace/EventText.h"
#include "trace/ScopeTracks.h"
#include "trace/TraceFile.h"
#include "vexastandin/Observer.h"

namespace vexa::runner {

/// The facts about a run that its trace starts with.
struct RunFacts {
    std::string tool;                                                       ///< the program and its version
    std::string macroFile;                                                  ///< the path as given
    std::vector<std::pair<std::string, std::vector<std::string>>> options;  ///< the options given, with their values
    bool isStrict = false;                ///< true if findings make the run fail, and recordings are played back
    bool hasTimeLimit = false;            ///< true if a command that does not return is a finding
    std::vector<std::string> suppressed;  ///< rules whose findings are ignored
};

/// An observer that writes a file in the Chrome trace event format: a JSON array, one event per line.
///
/// Commands, loading and unloading of add-ons, and host calls are spans. The scopes of the host have tracks of their
/// own. The percentage of the status line is a counter, and a finding is an instant. Each operation writes its event
/// before it returns. Only finish() closes the array; viewers accept a file without that.
///
/// Errors:  OutputError from construction and finish(); after a failed write nothing more is written.
/// Threads: as an observer.
class EventTrace : public standin::ObserverInterface {
public:
    EventTrace(const std::string& path, const RunFacts& facts, Append_e how = Append_e::BySystemCall);

    void entryBegan(const standin::EntryEvent& entry) override;
    void entryEnded(const standin::EntryEvent& entry) override;
    void callBegan(const standin::CallEvent& call) override;
    void callEnded(const standin::CallEvent& call) override;
    void findingMade(const standin::Finding& finding) override;
    void statusChanged(const standin::StatusLine& line) override;

    /// Writes how a process that ran add-ons has ended.
    void crashed(const Crash& crash);

    /// Ends the open spans and writes how the run ended. Later events are ignored.
    void finish(int exitStatus, const std::string& outcome);

private:
    // The names of the open spans of a track. Keeps the memory of spans that ended.
    class OpenSpans {
    public:
        bool areThere() const { return m_count != 0; }
        void push(std::string_view name);
        const std::string& pop() { return m_names[--m_count]; }

    private:
        std::vector<std::string> m_names;
        std::size_t m_count = 0;
    };

    template <class Action>
    void write(const Action& action);
    void handTo(LiveFile& file);
    void writeEdges(const std::vector<ScopeEdge>& edges);
    void writeEnd(int exitStatus, const std::string& outcome);
    void beginSpan(long thread, std::size_t threadNumber, std::string_view name);
    const std::string* endSpan(long thread);

    TraceFile m_file;
    EventText m_text;  // to be written next
    ScopeTracks m_scopes;
    std::map<long, OpenSpans> m_openSpans;  // by track; has every track that has a name
};

}  // namespace vexa::runner
