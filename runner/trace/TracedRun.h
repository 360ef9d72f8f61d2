#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vexa::runner {

/// A line of the timeline: a thread, or a kind of scope.
struct TracedTrack {
    std::string name;
    bool isScope = false;
};

/// The result of a call that threw an exception.
inline constexpr const char* kThrew = "threw";

/// A span of time of the run. Times are nanoseconds since its start.
struct TracedSpan {
    enum class Kind_e { Entry, Call, Scope };

    Kind_e kind = Kind_e::Call;
    std::size_t track = 0;  ///< the index of its track
    std::size_t depth = 0;  ///< the number of spans of its track around it
    std::string name;
    std::int64_t start = 0;
    std::optional<std::int64_t> end;  ///< empty if the trace ends before
    std::size_t number = 0;           ///< of a call
    std::string arguments;            ///< of a call, or of the call that started a scope
    std::string result;               ///< of a call
};

/// Returns true if \p span is a call that recorded a command.
inline bool isRecording(const TracedSpan& span) {
    return span.kind == TracedSpan::Kind_e::Call && span.name == "VexaUtilMacroRecordExtCommand" && span.result == "1";
}

/// A command, or the loading or unloading of an add-on.
struct TracedEntry {
    std::size_t span = 0;  ///< its index
    std::string kind;      ///< "command", "loading" or "unloading"
    std::string addOnId;
    std::string command;    ///< its text; empty for loading and unloading
    std::string macroLine;  ///< `FILE:LINE`; empty if it came from no macro file
    bool succeeded = false;
    std::string error;
    std::size_t calls = 0;  ///< how many host calls started during the entry
};

/// A finding.
struct TracedFinding {
    std::size_t track = 0;
    std::int64_t time = 0;
    std::string rule;
    std::string facts;  ///< the fields of a Finding, and the hint, as a JSON object
};

/// How the process of the add-ons ended, if the process that watched it knows.
struct TracedCrash {
    std::string message;
    std::string facts;  ///< the arguments of the event as a JSON object; see the page about traces
};

/// How a run ended.
struct TracedOutcome {
    std::int64_t exitStatus = 0;
    std::string text;
};

/// The facts about a run that its trace starts with.
struct TracedFacts {
    std::string tool;
    std::string macroFile;
    std::string options = "{}";  ///< the options given, with their values, as a JSON object
    bool isStrict = false;
    bool hasTimeLimit = false;
    std::vector<std::string> suppressed;  ///< rules
};

/// A run, read from its trace.
struct TracedRun : TracedFacts {
    std::optional<TracedOutcome> outcome;  ///< empty if the trace ends before the run
    std::int64_t end = 0;                  ///< the time of the last event
    std::vector<TracedTrack> tracks;
    std::vector<TracedSpan> spans;  ///< in the order of their starts
    std::vector<TracedEntry> entries;
    std::vector<TracedFinding> findings;
    std::vector<TracedCrash> crashes;
    std::vector<std::pair<std::int64_t, std::int64_t>> percents;  ///< of the status line: times and percentages
};

}  // namespace vexa::runner
