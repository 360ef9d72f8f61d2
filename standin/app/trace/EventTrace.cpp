#include "trace/EventTrace.h"

#include <unistd.h>

#include <new>
#include <nlohmann/json.hpp>

#include "vexastandin/Host.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;
using standin::CallEvent;
using standin::Entry_e;
using standin::EntryEvent;
using standin::Finding;
using standin::Place;
using standin::StatusLine;
using Time = std::chrono::steady_clock::time_point;

// Above every number that the kernel gives a thread.
constexpr long kFirstScopeTrack = 1L << 22;

constexpr const char* kCall = "call";
constexpr const char* kScope = "scope";
constexpr const char* kRun = "run";
constexpr const char* kCutOff = "cut off";  // a span that had not ended when the trace did

// The kernel's, so that other tools can tell the threads.
long thisThread() { return gettid(); }

double microseconds(Time time) { return std::chrono::duration<double, std::micro>(time.time_since_epoch()).count(); }

Json eventOf(const char* phase, const std::string& name, const char* category, long track, Time time) {
    return {{"name", name},    {"cat", category}, {"ph", phase},
            {"pid", getpid()}, {"tid", track},    {"ts", microseconds(time)}};
}

Json metadataOf(const char* kind, long track, const std::string& name) {
    return {{"name", kind}, {"ph", "M"}, {"pid", getpid()}, {"tid", track}, {"args", {{"name", name}}}};
}

const char* categoryOf(Entry_e kind) {
    switch (kind) {
        case Entry_e::Loading: return "loading";
        case Entry_e::Command: return "command";
        case Entry_e::Unloading: return "unloading";
    }
    return "";
}

std::string nameOf(const EntryEvent& entry) {
    switch (entry.kind) {
        case Entry_e::Loading: return "load " + entry.addOnId;
        case Entry_e::Command: return entry.addOnId + ' ' + entry.command;
        case Entry_e::Unloading: return "unload " + entry.addOnId;
    }
    return "";
}

Json placeOf(const Place& place) {
    return {{"call", place.call},
            {"function", place.function},
            {"command", place.command},
            {"macroLine", place.macroLine},
            {"thread", place.thread}};
}

Json argumentsOf(const Finding& finding) {
    const standin::Rule* const rule = standin::findRule(finding.rule);
    return {{"rule", finding.rule},
            {"severity", finding.severity == standin::Severity_e::Error ? "error" : "warning"},
            {"message", finding.message},
            {"addOn", finding.addOnId},
            {"opened", finding.opened ? placeOf(*finding.opened) : Json()},
            {"seen", placeOf(finding.seen)},
            {"count", finding.count},
            {"repeats", finding.repeats},
            {"hint", rule == nullptr ? "" : rule->hint}};
}

// Add-ons may hand over what is no UTF-8.
std::string textOf(const Json& event) { return event.dump(-1, ' ', false, Json::error_handler_t::replace); }

}  // namespace

EventTrace::EventTrace(const std::string& path, const RunFacts& facts) : m_file(path) {
    guarded([&] { writeHeader(facts); });
}

void EventTrace::entryBegan(const EntryEvent& entry) {
    guarded([&] {
        m_scopes.entryBegan();
        Json event = eventOf("B", nameOf(entry), categoryOf(entry.kind), thisThread(), entry.time);
        event["args"] = {{"addOn", entry.addOnId}, {"command", entry.command}, {"macroLine", entry.macroLine}};
        beginSpan(event, entry.threadNumber);
    });
}

void EventTrace::entryEnded(const EntryEvent& entry) {
    guarded([&] {
        for (const ScopeEdge& edge : m_scopes.entryEnded(entry.time)) writeEdge(edge);
        const long thread = thisThread();
        const auto name = endSpan(thread);
        if (!name) return;
        Json event = eventOf("E", *name, categoryOf(entry.kind), thread, entry.time);
        event["args"] = {{"addOn", entry.addOnId}, {"succeeded", entry.succeeded}, {"error", entry.error}};
        write(event);
    });
}

void EventTrace::callBegan(const CallEvent& call) {
    guarded([&] {
        Json event = eventOf("B", call.function, kCall, thisThread(), call.time);
        event["args"] = {{"number", call.number}, {"arguments", call.arguments}};
        beginSpan(event, call.threadNumber);
        if (const auto edge = m_scopes.callBegan(call)) writeEdge(*edge);
    });
}

void EventTrace::callEnded(const CallEvent& call) {
    guarded([&] {
        if (const auto edge = m_scopes.callEnded(call)) writeEdge(*edge);
        const long thread = thisThread();
        if (!endSpan(thread)) return;
        Json event = eventOf("E", call.function, kCall, thread, call.time);
        event["args"] = {{"result", call.result}};
        if (call.threw) event["args"]["threw"] = true;
        write(event);
    });
}

void EventTrace::findingMade(const Finding& finding) {
    guarded([&] {
        Json event = eventOf("i", finding.rule, "finding", thisThread(), std::chrono::steady_clock::now());
        event["s"] = "t";
        event["args"] = argumentsOf(finding);
        write(event);
    });
}

void EventTrace::statusChanged(const StatusLine& line) {
    guarded([&] {
        Json event = eventOf("C", "percent done", "status", thisThread(), std::chrono::steady_clock::now());
        event["args"] = {{"percent", line.active ? line.percent : 0}};
        write(event);
    });
}

void EventTrace::finish(int exitStatus, const std::string& outcome) {
    guarded([&] {
        const Time now = std::chrono::steady_clock::now();
        for (const ScopeEdge& edge : m_scopes.endAll(now)) writeEdge(edge);
        for (auto& [track, open] : m_openSpans) {
            while (const auto name = endSpan(track)) write(eventOf("E", *name, kCutOff, track, now));
        }
        Json event = eventOf("i", "outcome", kRun, thisThread(), now);
        event["s"] = "p";
        event["args"] = {{"exitStatus", exitStatus}, {"outcome", outcome}};
        write(event);
        m_file.append("\n]\n");
        m_isFinished = true;
    });
    m_file.close();
}

// An event that is left out for want of memory would leave its other half alone.
template <class Action>
void EventTrace::guarded(const Action& action) {
    const std::lock_guard<std::mutex> lock(m_guard);
    if (m_isFinished) return;
    try {
        action();
    } catch (const std::bad_alloc&) {
        m_file.giveUp("out of memory");
    }
}

void EventTrace::write(const Json& event) { m_file.append(",\n" + textOf(event)); }

void EventTrace::writeHeader(const RunFacts& facts) {
    const long thread = thisThread();
    Json options = Json::object();
    for (const auto& [name, values] : facts.options) options[name] = values;
    Json event = eventOf("i", kRun, kRun, thread, std::chrono::steady_clock::now());
    event["s"] = "p";
    event["args"] = {
        {"tool", facts.tool},         {"macroFile", facts.macroFile},       {"options", options},
        {"isStrict", facts.isStrict}, {"hasTimeLimit", facts.hasTimeLimit}, {"suppressed", facts.suppressed}};
    m_file.append("[\n" + textOf(event));
    write(metadataOf("process_name", thread, facts.tool));
}

void EventTrace::writeEdge(const ScopeEdge& edge) {
    const long track = kFirstScopeTrack + static_cast<long>(edge.track);
    nameTrack(track, edge.trackName);
    Json event = eventOf(edge.begins ? "B" : "E", edge.name, kScope, track, edge.time);
    if (edge.begins) event["args"] = {{"arguments", edge.arguments}};
    write(event);
}

void EventTrace::beginSpan(const Json& event, std::size_t threadNumber) {
    const long thread = event["tid"];
    nameTrack(thread, "thread " + std::to_string(threadNumber));
    m_openSpans[thread].push_back(event["name"]);
    write(event);
}

// The name under which it began: the id of an add-on is not known then. An end whose beginning was not observed is
// none.
std::optional<std::string> EventTrace::endSpan(long thread) {
    const auto found = m_openSpans.find(thread);
    if (found == m_openSpans.end() || found->second.empty()) return std::nullopt;
    std::string name = std::move(found->second.back());
    found->second.pop_back();
    return name;
}

void EventTrace::nameTrack(long track, const std::string& name) {
    if (m_openSpans.try_emplace(track).second) write(metadataOf("thread_name", track, name));
}

}  // namespace vexa::runner
