#include "trace/CallLines.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string_view>
#include <tuple>
#include <utility>

#include "text/Printable.h"
#include "text/StartsWith.h"
#include "trace/EntryText.h"
#include "trace/TraceReader.h"
#include "vexastandin/HostFunctions.h"

namespace vexa::runner {
namespace {

using Lines = std::vector<std::string>;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Replaces the number of each handle of a call by the result of `replace`, which gets the kind and the number. Leaves
// quoted texts as they are. A handle is a word, `#` and a number: mutex#1.
template <class Replace>
std::string withHandles(const std::string& line, const Replace& replace) {
    std::string text;
    bool isQuoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        const bool isHandle = !isQuoted && c == '#' && i > 0 && i + 1 < line.size() &&
                              std::isalpha(static_cast<unsigned char>(line[i - 1])) != 0 && isDigit(line[i + 1]);
        if (isQuoted && c == '\\' && i + 1 < line.size()) text += line[i++];
        text += line[i];
        if (c == '"') isQuoted = !isQuoted;
        if (!isHandle) continue;
        std::size_t end = i + 1;
        while (end < line.size() && isDigit(line[end])) ++end;
        const std::size_t word = text.find_last_of(" (,=\"", text.size() - 1) + 1;
        text += replace(text.substr(word), line.substr(i + 1, end - i - 1));
        i = end - 1;
    }
    return text;
}

// Gives handles new numbers, in the order in which they appear.
void renumberHandles(Lines& lines) {
    std::map<std::pair<std::string, std::string>, std::string> numbers;
    std::map<std::string, std::size_t> counts;
    for (std::string& line : lines) {
        line = withHandles(line, [&](const std::string& kind, const std::string& number) {
            const auto [place, isNew] = numbers.try_emplace({kind, number});
            if (isNew) place->second = std::to_string(++counts[kind]);
            return place->second;
        });
    }
}

Lines withoutHandleNumbers(const Lines& lines) {
    Lines masked;
    for (const std::string& line : lines) masked.push_back(runner::withoutHandleNumbers(line));
    return masked;
}

// Collects the lines of a command, and puts them into their order.
struct CommandBuilder {
    std::string name;
    std::string place;
    std::size_t thread = 0;
    std::map<std::size_t, Lines> calls;  // by thread
    Lines findings;
    std::string end;

    CommandLines build() {
        CommandLines command{name, place, std::move(calls[thread])};
        calls.erase(thread);
        std::vector<Lines> others;
        for (auto& [number, lines] : calls) others.push_back(std::move(lines));
        std::stable_sort(others.begin(), others.end(), [](const Lines& one, const Lines& other) {
            return withoutHandleNumbers(one) < withoutHandleNumbers(other);
        });
        for (std::size_t i = 0; i != others.size(); ++i) {
            const std::string mark = "(thread " + std::to_string(i + 2) + ") ";
            for (const std::string& line : others[i]) command.lines.push_back(mark + line);
        }
        renumberHandles(command.lines);
        command.lines.insert(command.lines.end(), findings.begin(), findings.end());
        if (!end.empty()) command.lines.push_back(end);
        return command;
    }
};

}  // namespace

// Collects the commands of a run in the order of their starts. Commands nest.
class RunLines {
public:
    void begin(std::size_t thread, std::string name, std::string place) {
        m_open.push_back(m_commands.size());
        m_commands.push_back({std::move(name), std::move(place), thread, {}, {}, {}});
        m_isBetween = false;
    }
    void call(std::size_t thread, std::string line) { current(thread).calls[thread].push_back(std::move(line)); }
    // The place of the first call is not compared, because it has the line of the macro.
    void finding(std::size_t thread, const std::string& line) {
        current(thread).findings.push_back(line.substr(0, line.rfind(kFirstPlace)));
    }
    void end(std::string line) {
        if (m_open.empty()) return;
        m_commands[m_open.back()].end = std::move(line);
        m_open.pop_back();
        m_isBetween = false;
    }

    CallLines take(std::string outcome) {
        CallLines lines;
        for (CommandBuilder& command : m_commands) lines.commands.push_back(command.build());
        lines.outcome = std::move(outcome);
        return lines;
    }

private:
    CommandBuilder& current(std::size_t thread) {
        if (!m_open.empty()) return m_commands[m_open.back()];
        if (!m_isBetween) m_commands.push_back({kOutsideOfCommands, "", thread, {}, {}, {}});
        m_isBetween = true;
        return m_commands.back();
    }

    std::vector<CommandBuilder> m_commands;
    std::vector<std::size_t> m_open;
    bool m_isBetween = false;  // the last command stands for calls between commands
};

namespace {

bool isCall(const std::string& line) {
    const auto& functions = standin::hostFunctions();
    return std::any_of(functions.begin(), functions.end(), [&](const standin::HostFunctionInfo& function) {
        const std::string_view name = function.name;
        return startsWith(line, name) && line.size() > name.size() && line[name.size()] == '(';
    });
}

// Removes `FILE:LINE: ` from the start of `line`, and returns `FILE:LINE`; empty if there is none.
std::string takePlace(std::string& line) {
    for (std::size_t at = line.find(": "); at != std::string::npos; at = line.find(": ", at + 1)) {
        const std::size_t colon = line.rfind(':', at - 1);
        const bool isNumber = at > 0 && colon != std::string::npos && colon + 1 < at &&
                              std::all_of(line.begin() + static_cast<std::ptrdiff_t>(colon) + 1,
                                          line.begin() + static_cast<std::ptrdiff_t>(at), isDigit);
        if (!isNumber) continue;
        std::string place = line.substr(0, at);
        line.erase(0, at + 2);
        return place;
    }
    return "";
}

// Reads `THREAD  text` with any indentation. Returns the thread, and leaves the text in `line`.
std::optional<std::size_t> takeThread(std::string& line) {
    const std::size_t blank = line.find(' ');
    const bool isNumber = blank != 0 && blank != std::string::npos && blank < 10 &&
                          std::all_of(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(blank), isDigit);
    if (!isNumber) return std::nullopt;
    const std::size_t thread = std::stoul(line.substr(0, blank));
    line.erase(0, std::min(line.find_first_not_of(' ', blank), line.size()));
    return thread;
}

std::string callLineOf(const TracedSpan& span) {
    if (!span.end) return span.name + '(' + span.arguments + ") did not return";
    standin::CallEvent call;
    call.function = span.name.c_str();
    call.arguments = span.arguments;
    call.result = span.result;
    call.threw = span.result == kThrew;
    return lineOf(call);
}

standin::EntryEvent eventOf(const TracedEntry& entry) {
    standin::EntryEvent event;
    if (entry.kind == "loading") event.kind = standin::Entry_e::Loading;
    if (entry.kind == "unloading") event.kind = standin::Entry_e::Unloading;
    event.addOnId = entry.addOnId;
    event.command = entry.command;
    event.succeeded = entry.succeeded;
    event.error = entry.error;
    return event;
}

// While an add-on is loaded, the host does not know its id yet: the span has the file.
std::string nameOf(const TracedEntry& entry, const TracedSpan& span) {
    standin::EntryEvent event = eventOf(entry);
    const std::string load = "load ";
    if (event.kind == standin::Entry_e::Loading)
        event.addOnId = span.name.substr(std::min(load.size(), span.name.size()));
    return printableLine(beginningOf(event));
}

std::string findingLineOf(const TracedFinding& finding) {
    const auto facts = nlohmann::json::parse(finding.facts);
    standin::Finding told;
    told.rule = finding.rule;
    told.message = facts.at("message");
    told.severity = facts.at("severity") == "error" ? standin::Severity_e::Error : standin::Severity_e::Warning;
    return printableLine(lineOf(told));
}

// An event of a trace. Of events at the same time, that with the lowest rank comes first.
struct Happening {
    std::int64_t time = 0;
    std::size_t rank = 0;
    std::function<void(RunLines&)> add;
};

class Happenings {
public:
    explicit Happenings(const TracedRun& run) : m_run(run) {
        for (const TracedSpan& span : run.spans) {
            if (span.kind == TracedSpan::Kind_e::Call) addCall(span);
        }
        for (const TracedEntry& entry : run.entries) addEntry(entry);
        for (const TracedFinding& finding : run.findings) {
            add(finding.time, 0, [&finding](RunLines& lines) { lines.finding(finding.track, findingLineOf(finding)); });
        }
        std::stable_sort(m_all.begin(), m_all.end(), [](const Happening& one, const Happening& other) {
            return std::tie(one.time, one.rank) < std::tie(other.time, other.rank);
        });
    }

    const std::vector<Happening>& all() const { return m_all; }

private:
    static constexpr std::size_t kMostDepth = 1000;
    static constexpr std::size_t kEndRank = kMostDepth + 1;
    static constexpr std::size_t kBeginRank = kEndRank + 1;

    void add(std::int64_t time, std::size_t rank, std::function<void(RunLines&)> action) {
        m_all.push_back({time, rank, std::move(action)});
    }

    // As in the text of a trace, a call counts when it returns, so an inner call comes first.
    void addCall(const TracedSpan& span) {
        add(span.end.value_or(m_run.end), kMostDepth - std::min(span.depth, kMostDepth),
            [&span](RunLines& lines) { lines.call(span.track, printableLine(callLineOf(span))); });
    }

    void addEntry(const TracedEntry& entry) {
        const TracedSpan& span = m_run.spans[entry.span];
        add(span.start, kBeginRank, [&entry, &span](RunLines& lines) {
            lines.begin(span.track, nameOf(entry, span), printableLine(entry.macroLine));
        });
        if (!span.end) return;
        add(*span.end, kEndRank, [&entry](RunLines& lines) { lines.end(printableLine(endOf(eventOf(entry)))); });
    }

    const TracedRun& m_run;
    std::vector<Happening> m_all;
};

}  // namespace

std::string withoutHandleNumbers(const std::string& line) {
    return withHandles(line, [](const std::string&, const std::string&) { return std::string(); });
}

CallLines callLinesIn(const std::string& text, const std::string& name) {
    std::istringstream in(text);
    std::string line;
    if (!std::getline(in, line) || line != kTextTraceHead) {
        throw TraceError(name + ": this is not a trace of 'vexa-standin run'");
    }
    RunLines lines;
    std::string outcome;
    for (std::size_t number = 2; std::getline(in, line); ++number) {
        if (startsWith(line, kRunEnd)) {
            outcome = line.substr(std::string_view(kEntryEnd).size());
            continue;
        }
        const auto thread = takeThread(line);
        const bool isCutOff = !thread && in.peek() == std::istringstream::traits_type::eof();
        if (isCutOff) break;
        if (!thread) throw TraceError(name + ':' + std::to_string(number) + ": not a line of a trace");
        if (startsWith(line, kEntryEnd)) {
            lines.end(line);
        } else if (startsWith(line, kFindingMark)) {
            lines.finding(*thread, line);
        } else if (isCall(line)) {
            lines.call(*thread, line);
        } else {
            const std::string place = takePlace(line);
            lines.begin(*thread, line, place);
        }
    }
    return lines.take(outcome);
}

CallLines callLinesOf(const TracedRun& run) {
    RunLines lines;
    const Happenings happenings(run);
    for (const Happening& happening : happenings.all()) happening.add(lines);
    if (!run.outcome) return lines.take("");
    return lines.take("exit status " + std::to_string(run.outcome->exitStatus) + ": " + run.outcome->text);
}

std::string textOf(const CallLines& lines) {
    std::string text;
    for (const CommandLines& command : lines.commands) {
        text += command.name + '\n';
        for (const std::string& line : command.lines) text += "  " + line + '\n';
    }
    return text;
}

CallRecorder::CallRecorder() : m_lines(std::make_unique<RunLines>()) {}

CallRecorder::~CallRecorder() = default;

void CallRecorder::entryBegan(const standin::EntryEvent& entry) {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_lines->begin(entry.threadNumber, printableLine(beginningOf(entry)), printableLine(entry.macroLine));
}

void CallRecorder::entryEnded(const standin::EntryEvent& entry) {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_lines->end(printableLine(endOf(entry)));
}

void CallRecorder::callEnded(const standin::CallEvent& call) {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_lines->call(call.threadNumber, printableLine(lineOf(call)));
}

void CallRecorder::findingMade(const standin::Finding& finding) {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_lines->finding(finding.seen.thread, printableLine(lineOf(finding)));
}

CallLines CallRecorder::take() {
    const std::lock_guard<std::mutex> lock(m_guard);
    return m_lines->take("");
}

}  // namespace vexa::runner
