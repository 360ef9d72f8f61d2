#pragma once

#include <atomic>
#include <cstddef>
#include <mutex>
#include <string>

#include "options/ExitStatus.h"
#include "session/Session.h"
#include "session/StopPlace.h"
#include "vexastandin/Observer.h"

extern "C" {
/// What has happened, as one line of JSON. The debugger reads it when the program is in vexaStandinStopHere(). The
/// members are `what` (`call`, `command`, `finding`, `failure`, `hang` or `end`) and those that Stopper.cpp adds to it.
extern const char* vexaStandinStopText;
/// Does nothing. The debugger that `vexa-standin debug` starts has a breakpoint here.
void vexaStandinStopHere();
}

namespace vexa::runner {

/// Calls vexaStandinStopHere() when a run reaches a place. The function that the add-on called is then on the stack of
/// the calling thread, unless the place is the end of a command.
///
/// Threads: as an observer.
class Stopper : public standin::ObserverInterface {
public:
    explicit Stopper(StopPlace place) : m_place(std::move(place)) {}

    /// Notes that the next command is the command \p number of the macro.
    void setCommand(std::size_t number) { m_command = number; }
    /// Stops if the place is work that does not return. Called on another thread than the work.
    void hung(const Overrun& overrun);
    /// Stops and says why the place was not reached, if it was not.
    void ended(ExitStatus_e status);

private:
    struct News;

    void entryBegan(const standin::EntryEvent& entry) override;
    void entryEnded(const standin::EntryEvent& entry) override;
    void callBegan(const standin::CallEvent& call) override;
    void callEnded(const standin::CallEvent&) override {}
    void findingMade(const standin::Finding& finding) override;
    void statusChanged(const standin::StatusLine&) override {}

    bool awaits(StopEvent_e event) const { return m_place.event == event; }
    std::string whyNotReached() const;
    void stop(News news);

    const StopPlace m_place;
    std::atomic<bool> m_isReached{false};
    std::atomic<std::size_t> m_command{0};      // the number of the current or last command
    std::atomic<std::size_t> m_calls{0};        // how many calls were made
    std::atomic<std::size_t> m_messageCall{0};  // the last call in this command that made a message for the user
    std::atomic<int> m_thread{0};               // the system's id of the thread of the current or last entry
    std::mutex m_guard;
    std::string m_text;
};

}  // namespace vexa::runner
