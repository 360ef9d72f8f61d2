#include "session/Stopper.h"

#include <unistd.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "text/Counted.h"
#include "text/Seconds.h"

// The barrier keeps the compiler from removing the function and its calls.
extern "C" {
__attribute__((visibility("default"), used)) const char* vexaStandinStopText = "";
__attribute__((visibility("default"), used, noinline)) void vexaStandinStopHere() { __asm__ volatile("" ::: "memory"); }
}

namespace vexa::runner {
namespace {

bool makesMessage(std::string_view function) {
    return function == "VexaUtilStringAlloc" || function == "VexaUtilDialogErrMsg";
}

}  // namespace

struct Stopper::News {
    nlohmann::json members;
};

void Stopper::hung(const Overrun& overrun) {
    const bool isRule = awaits(StopEvent_e::Rule) && m_place.rule == kHangRule;
    if (!awaits(StopEvent_e::Hang) && !awaits(StopEvent_e::Problem) && !isRule) return;
    const std::string work = overrun.work.addOnId + (overrun.work.addOnId.empty() ? "" : " ") + overrun.work.text;
    stop({{{"what", "hang"}, {"reason", '"' + work + "\" has not returned within " + secondsText(overrun.limit)}}});
}

void Stopper::ended(ExitStatus_e status) {
    stop({{{"what", "end"}, {"reason", whyNotReached()}, {"status", static_cast<int>(status)}}});
}

void Stopper::entryBegan(const standin::EntryEvent& entry) {
    m_thread = gettid();
    m_messageCall = 0;
    const bool isCommand = entry.kind == standin::Entry_e::Command;
    if (!isCommand || !awaits(StopEvent_e::Command) || m_command != m_place.number) return;
    stop({{{"what", "command"},
           {"reason", entry.addOnId + ' ' + entry.command},
           {"function", reinterpret_cast<std::uintptr_t>(entry.function)}}});
}

void Stopper::entryEnded(const standin::EntryEvent& entry) {
    if (entry.succeeded || entry.kind != standin::Entry_e::Command) return;
    if (!awaits(StopEvent_e::Failure) && !awaits(StopEvent_e::Problem)) return;
    stop({{{"what", "failure"}, {"reason", entry.addOnId + ' ' + entry.command + " failed: " + entry.error}}});
}

void Stopper::callBegan(const standin::CallEvent& call) {
    ++m_calls;
    if (makesMessage(call.function)) m_messageCall = call.number;
    if (!awaits(StopEvent_e::Call) || call.number != m_place.number) return;
    const std::string text = std::string(call.function) + '(' + call.arguments + ')';
    stop({{{"what", "call"}, {"reason", "call " + std::to_string(call.number) + ": " + text}}});
}

void Stopper::findingMade(const standin::Finding& finding) {
    if (!awaits(StopEvent_e::Problem) && !(awaits(StopEvent_e::Rule) && finding.rule == m_place.rule)) return;
    stop({{{"what", "finding"},
           {"rule", finding.rule},
           {"reason", textOf(finding)},
           {"opened", finding.opened ? finding.opened->call : 0}}});
}

std::string Stopper::whyNotReached() const {
    switch (m_place.event) {
        case StopEvent_e::Problem: break;
        case StopEvent_e::Rule: return "the rule " + m_place.rule + " was not broken";
        case StopEvent_e::Call: return "the run made only " + counted(m_calls, "host call");
        case StopEvent_e::Command: return "the run has only " + counted(m_command, "command");
        case StopEvent_e::Failure: return "no command failed";
        case StopEvent_e::Hang: return "every command returned within the time limit";
        case StopEvent_e::Crash: return "no add-on crashed";
    }
    return "no rule was broken, and no command failed";
}

// The debugger stops all threads, so no other thread changes the text meanwhile.
void Stopper::stop(News news) {
    if (m_isReached.exchange(true)) return;
    news.members["command"] = m_command.load();
    news.members["messageCall"] = m_messageCall.load();
    news.members["thread"] = m_thread.load();
    const std::lock_guard<std::mutex> lock(m_guard);
    m_text = news.members.dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
    vexaStandinStopText = m_text.c_str();
    vexaStandinStopHere();
}

}  // namespace vexa::runner
