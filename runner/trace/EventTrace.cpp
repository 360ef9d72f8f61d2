#include "trace/EventTrace.h"

#include <unistd.h>

#include <array>
#include <nlohmann/json.hpp>

#include "trace/EventThread.h"
#include "vexastandin/Host.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;
using standin::CallEvent;
using standin::Entry_e;
using standin::EntryEvent;
using standin::Finding;
using standin::Place;
using standin::SourcePlace;
using standin::StatusLine;
using Time = std::chrono::steady_clock::time_point;

// Greater than every thread id of the kernel.
constexpr long kFirstScopeTrack = 1L << 22;

// In the order of Entry_e.
constexpr std::array<const char*, 3> kEntryCategories = {"loading", "command", "unloading"};
constexpr std::string_view kCall = "call";
constexpr std::string_view kScope = "scope";
constexpr std::string_view kRun = "run";
constexpr std::string_view kCutOff = "cut off";  // the category of a span that was still open at the end of the trace

// Add-ons may pass invalid UTF-8.
std::string textOf(const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace); }

const char* categoryOf(Entry_e kind) { return kEntryCategories.at(static_cast<std::size_t>(kind)); }

std::string nameOf(const EntryEvent& entry) {
    if (entry.kind == Entry_e::Command) return entry.addOnId + ' ' + entry.command;
    return (entry.kind == Entry_e::Loading ? "load " : "unload ") + entry.addOnId;
}

Json sourceOf(const SourcePlace& source) {
    return {{"function", source.function}, {"file", source.file}, {"line", source.line}, {"text", source.text}};
}

Json placeOf(const Place& place) {
    Json object = {{"call", place.call},
                   {"function", place.function},
                   {"command", place.command},
                   {"macroLine", place.macroLine},
                   {"thread", place.thread}};
    if (!place.source.text.empty()) object["source"] = sourceOf(place.source);
    return object;
}

std::string argumentsOf(const Finding& finding) {
    const standin::Rule* const rule = standin::findRule(finding.rule);
    return textOf({{"rule", finding.rule},
                   {"severity", nameOf(finding.severity)},
                   {"message", finding.message},
                   {"addOn", finding.addOnId},
                   {"opened", finding.opened ? placeOf(*finding.opened) : Json()},
                   {"seen", placeOf(finding.seen)},
                   {"count", finding.count},
                   {"repeats", finding.repeats},
                   {"hint", rule == nullptr ? "" : rule->hint}});
}

std::string factsOf(const RunFacts& facts) {
    Json options = Json::object();
    for (const auto& [name, values] : facts.options) options[name] = values;
    return textOf({{"tool", facts.tool},
                   {"macroFile", facts.macroFile},
                   {"options", options},
                   {"isStrict", facts.isStrict},
                   {"hasTimeLimit", facts.hasTimeLimit},
                   {"suppressed", facts.suppressed}});
}

}  // namespace

EventTrace::EventTrace(const std::string& path, const RunFacts& facts, Append_e how)
    : m_file(path, how), m_text(getpid()) {
    write([&] {
        const long thread = EventThread::current();
        m_text.event("i", kRun, kRun, thread, std::chrono::steady_clock::now());
        m_text.member("s", "p").json("args", factsOf(facts)).close();
        m_text.metadata("process_name", thread, facts.tool);
    });
}

void EventTrace::entryBegan(const EntryEvent& entry) {
    write([&] {
        m_scopes.entryBegan();
        const long thread = EventThread::current();
        const std::string name = nameOf(entry);
        beginSpan(thread, entry.threadNumber, name);
        m_text.event("B", name, categoryOf(entry.kind), thread, entry.time).open("args");
        m_text.member("addOn", entry.addOnId).member("command", entry.command).member("macroLine", entry.macroLine);
        m_text.close().close();
    });
}

void EventTrace::entryEnded(const EntryEvent& entry) {
    write([&] {
        writeEdges(m_scopes.entryEnded(entry.time));
        const long thread = EventThread::current();
        const std::string* const name = endSpan(thread);
        if (name == nullptr) return;
        m_text.event("E", *name, categoryOf(entry.kind), thread, entry.time).open("args");
        m_text.member("addOn", entry.addOnId).member("succeeded", entry.succeeded).member("error", entry.error);
        m_text.close().close();
    });
}

void EventTrace::callBegan(const CallEvent& call) {
    write([&] {
        const long thread = EventThread::current();
        beginSpan(thread, call.threadNumber, call.function);
        m_text.event("B", call.function, kCall, thread, call.time).open("args");
        m_text.member("number", call.number).member("arguments", call.arguments).close().close();
        writeEdges(m_scopes.callBegan(call));
    });
}

void EventTrace::callEnded(const CallEvent& call) {
    write([&] {
        writeEdges(m_scopes.callEnded(call));
        const long thread = EventThread::current();
        if (endSpan(thread) == nullptr) return;
        m_text.event("E", call.function, kCall, thread, call.time).open("args").member("result", call.result);
        if (call.threw) m_text.member("threw", true);
        m_text.close().close();
    });
}

void EventTrace::findingMade(const Finding& finding) {
    write([&] {
        m_text.event("i", finding.rule, "finding", EventThread::current(), std::chrono::steady_clock::now());
        m_text.member("s", "t").json("args", argumentsOf(finding)).close();
    });
}

void EventTrace::statusChanged(const StatusLine& line) {
    write([&] {
        m_text.event("C", "percent done", "status", EventThread::current(), std::chrono::steady_clock::now())
            .open("args");
        m_text.member("percent", line.active ? line.percent : 0).close().close();
    });
}

void EventTrace::crashed(const Crash& crash) {
    write([&] {
        m_text.event("i", "crash", "crash", EventThread::current(), std::chrono::steady_clock::now());
        m_text.member("s", "p").json("args", crashArguments(crash)).close();
    });
}

void EventTrace::finish(int exitStatus, const std::string& outcome) {
    m_file.finish([&](LiveFile& file) {
        writeEnd(exitStatus, outcome);
        handTo(file);
    });
}

template <class Action>
void EventTrace::write(const Action& action) {
    m_file.write([&](LiveFile& file) {
        action();
        handTo(file);
    });
}

// Writes the new text immediately and as a whole, so that it is in the file if the process dies.
void EventTrace::handTo(LiveFile& file) {
    m_text.hand([&](std::string_view text) { file.append(text); });
}

void EventTrace::writeEnd(int exitStatus, const std::string& outcome) {
    const Time now = std::chrono::steady_clock::now();
    writeEdges(m_scopes.endAll(now));
    for (auto& [track, open] : m_openSpans) {
        while (open.areThere()) m_text.event("E", open.pop(), kCutOff, track, now).close();
    }
    m_text.event("i", "outcome", kRun, EventThread::current(), now).member("s", "p").open("args");
    m_text.member("exitStatus", exitStatus).member("outcome", outcome).close().close();
    m_text.end();
}

void EventTrace::writeEdges(const std::vector<ScopeEdge>& edges) {
    for (const ScopeEdge& edge : edges) {
        const long track = kFirstScopeTrack + static_cast<long>(edge.track);
        if (m_openSpans.try_emplace(track).second) m_text.metadata("thread_name", track, edge.trackName);
        m_text.event(edge.begins ? "B" : "E", edge.name, kScope, track, edge.time);
        if (edge.begins) m_text.open("args").member("arguments", edge.arguments).close();
        m_text.close();
    }
}

void EventTrace::beginSpan(long thread, std::size_t threadNumber, std::string_view name) {
    const auto [open, isNew] = m_openSpans.try_emplace(thread);
    if (isNew) m_text.metadata("thread_name", thread, "thread " + std::to_string(threadNumber));
    open->second.push(name);
}

// Ends the span under the name with which it started: at that time the id of an add-on may not be known. Ignores an end
// without a start. The name is valid until the next span starts.
const std::string* EventTrace::endSpan(long thread) {
    const auto found = m_openSpans.find(thread);
    if (found == m_openSpans.end() || !found->second.areThere()) return nullptr;
    return &found->second.pop();
}

void EventTrace::OpenSpans::push(std::string_view name) {
    if (m_count == m_names.size()) m_names.emplace_back();
    m_names[m_count++] = name;
}

}  // namespace vexa::runner
