#include "commands/attach/LayerEvents.h"

#include <algorithm>
#include <utility>
#include <variant>

#include "session/Session.h"
#include "session/watch/Death.h"
#include "terminal/Console.h"
#include "trace/EventThread.h"

namespace vexa::runner {
namespace {

std::string workOf(const standin::EntryEvent& entry) {
    switch (entry.kind) {
        case standin::Entry_e::Loading: return "loading of " + entry.addOnId;
        case standin::Entry_e::Unloading: return "unloading of " + entry.addOnId;
        case standin::Entry_e::Command: break;
    }
    return entry.addOnId + ' ' + entry.command;
}

}  // namespace

using standin::CallEvent;
using standin::Entry_e;
using standin::EntryEvent;
using standin::EventMessage;
using standin::Finding;
using standin::Message_e;

LayerEvents::LayerEvents(const ContractOptions& options, standin::ObserverInterface* traces)
    : m_options(options),
      m_traces(traces),
      m_sources(options.showsStacks ? ShownStack_e::Whole : ShownStack_e::OwnLine) {
    m_host.setKeepsCalls(false);
    for (const std::string& rule : options.suppressed) m_host.suppress(rule);
}

void LayerEvents::take(std::string_view bytes) {
    const auto message = standin::readMessage(bytes);
    if (!message) return;
    EventThread::set(message->thread);
    switch (message->kind) {
        case Message_e::EntryBegan:
        case Message_e::EntryEnded: return takeEntry(*message);
        case Message_e::CallBegan:
        case Message_e::CallEnded: return takeCall(*message);
        case Message_e::FindingMade: {
            auto finding = std::get<Finding>(message->content);
            m_sources.complete(finding);
            return takeFinding(message->thread, finding);
        }
        case Message_e::AddOnMapped: m_addOnObjects.insert(std::get<std::string>(message->content)); return;
        case Message_e::Note: return tell(kProgramName, std::get<std::string>(message->content));
    }
}

void LayerEvents::takeEntry(const EventMessage& message) {
    const auto& entry = std::get<EntryEvent>(message.content);
    if (message.kind == Message_e::EntryBegan) {
        m_wasAddOnLoaded = true;
        m_entries[message.thread].push_back({entry, Clock::now(), {}});
        if (m_traces != nullptr) m_traces->entryBegan(entry);
    } else {
        endEntry(message.thread, entry);
        if (m_traces != nullptr) m_traces->entryEnded(entry);
    }
}

void LayerEvents::takeCall(const EventMessage& message) {
    if (m_traces == nullptr) return;
    const auto& call = std::get<CallEvent>(message.content);
    if (message.kind == Message_e::CallBegan) return m_traces->callBegan(call);
    if (const auto line = m_status.changeBy(call)) m_traces->statusChanged(*line);
    m_traces->callEnded(call);
}

void LayerEvents::endEntry(long thread, const EntryEvent& entry) {
    std::vector<OpenEntry>& entries = m_entries[thread];
    if (entries.empty()) return;
    for (Finding& finding : entries.back().findings) {
        finding.addOnId = entry.addOnId;
        report(finding);
    }
    entries.pop_back();
    if (entries.empty()) m_entries.erase(thread);
    const bool hasReturned = !entry.failure.command.empty();  // otherwise a finding tells what happened
    if (hasReturned) tellFailure(entry);
}

void LayerEvents::tellFailure(const EntryEvent& entry) {
    standin::CommandResult result{false, entry.error, entry.failure};
    m_sources.completeFailure(result.place);
    tell(entry.macroLine + ": " + entry.addOnId, failureWithSource(result));
}

// As long as an add-on is loaded, its findings have the name of its file in the place of the id.
void LayerEvents::takeFinding(long thread, const Finding& finding) {
    const auto& suppressed = m_options.suppressed;
    const bool isSuppressed = std::find(suppressed.begin(), suppressed.end(), finding.rule) != suppressed.end();
    if (m_traces != nullptr && !isSuppressed) m_traces->findingMade(finding);
    const auto found = m_entries.find(thread);
    const bool isInEntry = found != m_entries.end() && found->second.back().event.kind == Entry_e::Loading &&
                           found->second.back().event.addOnId == finding.addOnId;
    if (isInEntry) {
        found->second.back().findings.push_back(finding);
    } else {
        report(finding);
    }
}

void LayerEvents::report(const Finding& finding) {
    m_host.report(finding);
    m_printer.printNew(m_host);
}

void LayerEvents::finish() {
    for (auto& [thread, entries] : m_entries) {
        for (OpenEntry& entry : entries) {
            for (const Finding& finding : std::exchange(entry.findings, {})) report(finding);
        }
    }
    if (m_wasAddOnLoaded) {
        printRestOfFindings(m_host);
        hintAtLines(m_sources);
    } else {
        tell(kProgramName, "no add-on was loaded, so nothing was checked");
    }
}

std::vector<std::string> LayerEvents::unfinished() const {
    std::vector<std::string> works;
    for (const auto& [thread, entries] : m_entries) {
        const EntryEvent& entry = entries.back().event;
        const bool isCommand = entry.kind == Entry_e::Command;
        works.push_back(isCommand ? entry.macroLine + ", \"" + workOf(entry) + '"' : workOf(entry));
    }
    return works;
}

std::optional<long> LayerEvents::reportLate(Clock::duration limit) {
    const Clock::time_point now = Clock::now();
    const auto late = std::find_if(m_entries.begin(), m_entries.end(),
                                   [&](const auto& entries) { return now - entries.second.front().began > limit; });
    if (late == m_entries.end()) return std::nullopt;
    const auto [thread, entries] = *late;
    m_entries.erase(late);
    const EntryEvent& event = entries.front().event;
    const Finding finding =
        hangFinding({0, "", workOf(event), event.macroLine, static_cast<std::size_t>(event.threadNumber)}, limit);
    if (m_traces != nullptr) m_traces->findingMade(finding);
    report(finding);
    return thread;
}

void LayerEvents::forgive(Clock::duration time) {
    for (auto& [thread, entries] : m_entries) {
        for (OpenEntry& entry : entries) entry.began += time;
    }
}

}  // namespace vexa::runner
