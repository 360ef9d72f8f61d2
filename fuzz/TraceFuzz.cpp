// Reads traces for the report. An input that starts with '!' lists damages to a trace that an EventTrace wrote; one
// that starts with '@' is a command to write into a trace; any other input is the trace itself. A refusal must be one
// line. The page data of an accepted trace must be consistent JSON in UTF-8.

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

#include "Fuzz.h"
#include "commands/report/PageData.h"
#include "system/files/WholeFile.h"
#include "tests/support/TemporaryFolder.h"
#include "trace/EventText.h"
#include "trace/EventTrace.h"
#include "trace/TraceReader.h"
#include "vexa/AddOn.h"
#include "vexastandin/Host.h"
#include "vexastandin/HostFunctions.h"

namespace vexa::fuzz {
namespace {

using Json = nlohmann::ordered_json;
using Lines = std::vector<std::string>;

constexpr const char* kName = "trace";
constexpr char kDamagesFollow = '!';
constexpr char kCommandFollows = '@';

// ---- The trace

// Records and shows the command, and does not finish the status line, which breaks a rule.
VexaBoolean execute(const char* command, char**) {
    VexaUtilStatusStartPercentDone("working", 1, 1);
    VexaUtilStatusCheckPercentDone(50);
    VexaUtilDialogErrMsg(command);
    return VexaUtilMacroRecordExtCommand("ONE", command);
}

const VexaAddOn_s* addOn(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "ONE", nullptr, execute, nullptr};
    return &description;
}

Lines linesOf(const std::string& text) {
    Lines lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t lineEnd = std::min(text.find('\n', at), text.size());
        lines.push_back(text.substr(at, lineEnd - at));
        at = lineEnd + 1;
    }
    return lines;
}

std::string joined(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + '\n';
    return text;
}

// Replaces the values that differ from run to run: process, thread and time.
std::string withoutChance(std::string line, std::size_t number) {
    const bool hasComma = line.back() == ',';
    Json event = Json::parse(hasComma ? line.substr(0, line.size() - 1) : line, nullptr, false);
    if (!event.is_object()) return line;
    event["pid"] = 1;
    if (event["tid"] == getpid()) event["tid"] = 1;
    if (event.contains("ts")) event["ts"] = number;
    return event.dump() + (hasComma ? "," : "");
}

std::string tracedRun() {
    const tests::TemporaryFolder folder;
    const std::string path = folder.path("trace");
    standin::Host host;
    runner::EventTrace trace(path,
                             {"tool", "m.macro", {{"--batch", {}}, {"--style", {"s"}}}, true, false, {"null-handle"}});
    host.setObserver(&trace);
    host.setRecording(true);
    host.linkAddOn(addOn);
    host.run("ONE", "SAY \"a\"\nb", "m.macro:1");
    host.run("ONE", "", "m.macro:2");
    host.unloadAddOns();
    trace.finish(1, "a command failed");
    return runner::readWholeFile(path);
}

Lines knownTrace() {
    Lines lines = linesOf(tracedRun());
    for (std::size_t i = 0; i < lines.size(); ++i) lines[i] = withoutChance(lines[i], i);
    return lines;
}

// Returns the trace of a run with one command.
std::string traceOf(const std::string& command) {
    constexpr long kTrack = 1;
    runner::EventText text(1);
    text.event("i", "run", "run", kTrack, {})
        .json("args", R"({"tool":"tool","macroFile":"m.macro","options":{},)"
                      R"("isStrict":true,"hasTimeLimit":false,"suppressed":[]})");
    text.close();
    text.event("B", "ONE " + command, "command", kTrack, {}).open("args");
    text.member("addOn", "ONE").member("command", command).member("macroLine", "m.macro:1").close().close();
    text.event("B", "VexaUtilDialogErrMsg", "call", kTrack, {}).open("args");
    text.member("number", 1).member("arguments", command).close().close();
    text.event("E", "VexaUtilDialogErrMsg", "call", kTrack, {}).open("args").member("result", command).close().close();
    text.event("E", "ONE " + command, "command", kTrack, {}).open("args");
    text.member("addOn", "ONE").member("succeeded", false).member("error", command).close().close();
    text.event("i", "outcome", "run", kTrack, {}).open("args");
    text.member("exitStatus", 0).member("outcome", command).close().close();
    text.end();
    std::string trace;
    text.hand([&](std::string_view whole) { trace = whole; });
    return trace;
}

// ---- Damages

struct Damage {
    std::size_t kind;
    std::size_t line;
    std::size_t place;
    std::size_t with;
};

// Replaces one value of an event.
void changeValue(std::string& line, const Damage& damage) {
    static const std::array<Json, 14> words = {nullptr,       true,          0,          -1, 1e300,    -1e300,
                                               INT64_MAX,     INT64_MIN,     UINT64_MAX, "", "\n\x7f", "call",
                                               Json::array(), Json::object()};
    const std::string comma = !line.empty() && line.back() == ',' ? "," : "";
    Json event = Json::parse(line.substr(0, line.size() - comma.size()), nullptr, false);
    if (!event.is_object()) return;
    const Json places = event.flatten();
    auto place = places.begin();
    std::advance(place, damage.place % places.size());
    event[Json::json_pointer(place.key())] = words[damage.with % words.size()];
    line = event.dump() + comma;
}

void apply(const Damage& damage, Lines& lines) {
    if (lines.empty()) return;
    const std::size_t number = damage.line % lines.size();
    std::string& line = lines[number];
    const std::size_t at = damage.place % (line.size() + 1);
    const auto place = [&](std::size_t index) { return lines.begin() + static_cast<std::ptrdiff_t>(index); };
    switch (damage.kind % 6) {
        case 0: line.insert(at, 1, static_cast<char>(damage.with)); break;
        case 1: line.erase(at, damage.with); break;
        case 2: changeValue(line, damage); break;
        case 3: std::swap(line, lines[damage.with % lines.size()]); break;
        case 4: lines.insert(place(damage.with % lines.size()), std::string(line)); break;
        default: lines.erase(place(number));
    }
}

std::string damagedTrace(const std::string& damages) {
    static const Lines whole = knownTrace();
    Lines lines = whole;
    const auto byte = [&](std::size_t at) { return static_cast<std::size_t>(static_cast<unsigned char>(damages[at])); };
    for (std::size_t at = 0; at + 4 <= damages.size(); at += 4) {
        apply({byte(at), byte(at + 1), byte(at + 2), byte(at + 3)}, lines);
    }
    return joined(lines);
}

// The same trace, in which no line has the form that the reader scans by itself. The JSON library reads every line.
std::string inOtherWords(const std::string& trace) {
    Lines lines = linesOf(trace);
    for (std::string& line : lines) {
        if (!line.empty() && line.front() == '{') line.insert(1, 1, ' ');
    }
    return joined(lines);
}

// ---- The page

void requireRefusal(const runner::TraceError& error) {
    const std::string refusal = error.what();
    require(refusal.compare(0, 6, "trace:") == 0, "a refusal begins with the file", refusal);
    require(refusal.find_first_of("\r\n") == std::string::npos, "a refusal is one line", refusal);
    require(refusal.size() < 500, "a refusal is short", refusal);
}

template <class Values>
void requireBelow(const Json& column, const Values& limit, std::size_t rows) {
    require(column.size() == rows, "the columns are as long as each other");
    for (const std::size_t index : column) require(index < limit.size(), "there is what is pointed at");
}

void requireConsistent(const Json& page) {
    const Json& spans = page.at("spans");
    const std::size_t rows = spans.at("kind").size();
    requireBelow(spans.at("track"), page.at("tracks"), rows);
    for (const char* column : {"name", "arguments", "result"}) {
        requireBelow(spans.at(column), spans.at("texts"), rows);
    }
    for (const Json& entry : page.at("entries")) require(entry.at("span") < rows, "an entry has its span");
    for (const Json& finding : page.at("findings")) {
        const bool isOfTrack = finding.at("track") < page.at("tracks").size();
        require(isOfTrack || finding.at("rule") == "crash", "a finding has its track");
    }
    require(page.at("functions").size() == standin::hostFunctions().size(), "there is a row for each function");
}

// Returns nothing if the trace is refused.
std::optional<Json> pageOf(const std::string& trace) {
    try {
        runner::PageData data;
        runner::TraceInput::ofText(trace, kName).visit(data);
        return data.take();
    } catch (const runner::TraceError& error) {
        requireRefusal(error);
        return std::nullopt;
    }
}

void tryPage(const Json& page) {
    requireConsistent(page);
    (void)page.dump();  // throws for texts that are not UTF-8
}

void tryCommand(const std::string& command) {
    const std::string trace = traceOf(command);
    const auto page = pageOf(trace);
    require(page.has_value(), "a trace is read", command);
    const runner::TracedRun run = runner::TraceInput::ofText(trace, kName).run();
    const std::string inUtf8 = Json::parse(Json(command).dump(-1, ' ', false, Json::error_handler_t::replace));
    require(run.entries.at(0).command == inUtf8, "the command is in the trace as it was run", command);
    require(run.spans.at(1).arguments == inUtf8, "the arguments of a call are in the trace", command);
    require(run.spans.at(1).result == inUtf8, "the result of a call is in the trace", command);
    require(run.outcome.has_value(), "a trace that was finished has an outcome", command);
    tryPage(*page);
}

void tryTrace(const std::string& trace) {
    const std::optional<Json> page = pageOf(trace);
    require(page == pageOf(inOtherWords(trace)), "both ways to read a line give the same");
    if (page) tryPage(*page);
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    const std::string input = textOf(data, size);
    const char kind = input.empty() ? '\0' : input.front();
    if (kind == kCommandFollows) {
        tryCommand(&input[1]);  // the host takes C strings, which end at a NUL
    } else {
        tryTrace(kind == kDamagesFollow ? damagedTrace(input.substr(1)) : input);
    }
    return 0;
}
