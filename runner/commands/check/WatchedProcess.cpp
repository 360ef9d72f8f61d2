#include "commands/check/WatchedProcess.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <new>

#include "session/watch/Death.h"
#include "session/watch/LastWords.h"
#include "session/watch/Processes.h"

namespace vexa::runner {
namespace {

constexpr std::chrono::seconds kTimeToLeave{5};  // from the verdict to the end of the process
constexpr std::size_t kOutputKept = 4096;
constexpr char kVerdictNote = 'v';
constexpr rlim_t kMemory = rlim_t{4} << 30;
constexpr rlim_t kSanitizersMemory = rlim_t{1} << 40;  // they reserve more addresses than any program needs

// How a verdict is told: this, and its two texts.
struct VerdictHead {
    std::uint64_t outcome;
    std::uint64_t reasonSize;
};

std::string textOf(const Verdict& verdict) {
    const VerdictHead head = {static_cast<std::uint64_t>(verdict.outcome), verdict.reason.size()};
    return std::string(reinterpret_cast<const char*>(&head), sizeof head) + verdict.reason + verdict.macro;
}

std::optional<Verdict> verdictOf(const std::string& text) {
    VerdictHead head{};
    if (text.size() < sizeof head) return std::nullopt;
    std::memcpy(&head, text.data(), sizeof head);
    const bool isVerdict =
        head.outcome <= static_cast<std::uint64_t>(Outcome_e::TimedOut) && head.reasonSize <= text.size() - sizeof head;
    if (!isVerdict) return std::nullopt;
    return Verdict{static_cast<Outcome_e>(head.outcome), text.substr(sizeof head, head.reasonSize),
                   text.substr(sizeof head + head.reasonSize)};
}

BlackBox* boxOfThisProcess = nullptr;  // a new-handler is given nothing

[[noreturn]] void noteWantOfMemory() {
    boxOfThisProcess->wantedMemory = true;
    throw std::bad_alloc();
}

rlim_t addressesUsed() {
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

void limitResources() {
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    const rlim_t used = addressesUsed();
    rlimit memory{};
    if (used > kSanitizersMemory || getrlimit(RLIMIT_AS, &memory) != 0) return;
    memory.rlim_cur = std::min(memory.rlim_max, used + kMemory);
    setrlimit(RLIMIT_AS, &memory);
}

class WatchedTest : public ProcessWorkInterface {
public:
    WatchedTest(BlackBox& box, std::chrono::milliseconds timeout, const std::function<Verdict()>& work)
        : m_box(box), m_timeout(timeout), m_work(work) {}

    int run(std::size_t, ProcessBox& box, NotesInterface& notes) override {
        limitResources();
        boxOfThisProcess = &m_box;
        std::set_new_handler(noteWantOfMemory);
        m_box.process = &box;
        m_box.timeout = m_timeout;
        m_box.touch();
        notes.tell(kVerdictNote, textOf(m_work()));
        return 0;
    }
    void take(std::size_t, const Message& message, RunningProcessInterface&) override {
        if (message.kind == kVerdictNote) m_end.verdict = verdictOf(message.text);
    }
    void end(std::size_t, const ProcessBox&, const ProcessOutcome& outcome) override {
        if (m_isStopAsked) throw EndedBySignal{SIGINT};
        m_end.hasLeft = outcome.end == End_e::Left;
        m_end.timedOut = outcome.end == End_e::TimedOut;
        m_end.waitStatus = outcome.waitStatus;
        m_end.output = outcome.out.text;
    }
    void stopAsked(std::size_t, const ProcessBox&) override { m_isStopAsked = true; }
    void killed(std::size_t, const ProcessBox&, int) override {}

    const ProcessEnd& result() const { return m_end; }

private:
    BlackBox& m_box;
    std::chrono::milliseconds m_timeout;
    const std::function<Verdict()>& m_work;
    ProcessEnd m_end;
    bool m_isStopAsked = false;
};

}  // namespace

ProcessEnd runWatched(const AwaitedSignals& signals, BlackBox& box, std::chrono::milliseconds timeout,
                      const std::function<Verdict()>& work) {
    ProcessSetting setting;
    setting.printed = Printed_e::CaughtAsOne;
    setting.kept = kOutputKept;
    setting.keepsEnd = true;
    setting.isTimed = true;
    setting.timeToLeave = kTimeToLeave;
    setting.leavesAtOnce = true;
    WatchedTest test(box, timeout, work);
    runInProcesses(signals, 1, setting, test);
    return test.result();
}

}  // namespace vexa::runner
