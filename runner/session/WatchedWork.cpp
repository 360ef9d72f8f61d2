#include "session/WatchedWork.h"

#include <csignal>
#include <memory>

#include "session/watch/Death.h"
#include "system/processes/Tracer.h"

namespace vexa::runner {
namespace {

using Work = std::function<ExitStatus_e(ProcessBox& box)>;

class WatchedWork : public UserWork {
public:
    explicit WatchedWork(const Work& work) : m_work(work) {}

    ExitStatus_e status() const { return m_status; }

    int run(std::size_t, ProcessBox& box, NotesInterface&) override { return static_cast<int>(m_work(box)); }
    NotesInterface* notesOf(std::size_t, std::function<KeptText()>) override { return nullptr; }
    void end(std::size_t, const ProcessBox& box, const ProcessOutcome& outcome) override {
        if (wasInterrupted(outcome)) throw EndedBySignal{SIGINT};
        m_status = static_cast<ExitStatus_e>(outcome.status);
        if (outcome.end == End_e::Left) return;
        tellDeath(box, outcome);
        m_status = outcome.end == End_e::TimedOut ? ExitStatus_e::CommandHung : ExitStatus_e::ProcessEnded;
    }

private:
    const Work& m_work;
    ExitStatus_e m_status = ExitStatus_e::ProcessEnded;
};

}  // namespace

ExitStatus_e doWatched(const std::optional<std::chrono::duration<double>>& limit, const Work& work) {
    if (isTraced()) {
        const auto box = std::make_unique<ProcessBox>();
        return work(*box);
    }
    const AwaitedSignals signals;
    ProcessSetting setting;
    setting.printed = Printed_e::Inherited;
    setting.limitTime(limit);
    WatchedWork watched(work);
    runInProcesses(signals, 1, setting, watched);
    return watched.status();
}

}  // namespace vexa::runner
