#include "commands/check/WatchedProcess.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <new>

#include "session/CoverageNotes.h"
#include "session/ProblemOutputs.h"
#include "session/watch/Death.h"

namespace vexa::runner {
namespace {

constexpr std::chrono::seconds kTimeToLeave{5};  // the limit from the verdict to the end of the process
constexpr std::size_t kOutputKept = 4096;
constexpr char kMacroNote = 'm';
constexpr char kFirstOutcome =
    '0';  // the kind of the note with the reason is this plus the outcome; it is the last note
constexpr rlim_t kMemory = rlim_t{4} << 30;
constexpr rlim_t kSanitizersMemory = rlim_t{1} << 40;  // sanitizers reserve more addresses than any program needs

BlackBox* boxOfThisProcess = nullptr;  // global, because a new-handler gets no argument

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

class WatchedTest : public ProcessWorkInterface, private NotesInterface {
public:
    WatchedTest(BlackBox& box, const TestSetting& setting, const std::function<Verdict()>& work)
        : m_box(box), m_setting(setting), m_work(work) {}

    int run(std::size_t, ProcessBox& box, NotesInterface& notes) override {
        limitResources();
        boxOfThisProcess = &m_box;
        std::set_new_handler(noteWantOfMemory);
        m_box.process = &box;
        m_box.notes = &notes;
        m_box.timeout = m_setting.timeout;
        m_box.touch();
        const Verdict verdict = m_work();
        notes.tell(kMacroNote, verdict.macro);
        for (const Problem& problem : verdict.problems) notes.tell(kProblemNote, packed(problem));
        notes.tell(static_cast<char>(kFirstOutcome + static_cast<int>(verdict.outcome)), verdict.reason);
        return 0;
    }
    NotesInterface* notesOf(std::size_t, std::function<KeptText()>) override { return this; }
    void end(std::size_t, const ProcessBox& box, const ProcessOutcome& outcome) override {
        if (m_isStopAsked) throw EndedBySignal{SIGINT};
        static_cast<ProcessOutcome&>(m_end) = outcome;
        m_end.work = {box.place.text(), box.addOnId.text(), box.work.text()};
    }
    void stopAsked(std::size_t, const ProcessBox&) override { m_isStopAsked = true; }
    void killed(std::size_t, const ProcessBox&, int) override {}

    const ProcessEnd& result() const { return m_end; }

private:
    void tell(char kind, std::string_view text) override {
        if (kind == kCoverageNote) {
            if (m_setting.coverage != nullptr) addCoverageNote(*m_setting.coverage, text);
        } else if (kind == kMacroNote) {
            m_macro = text;
        } else if (kind == kProblemNote) {
            m_problems.push_back(unpackedProblem(text));
        } else {
            const auto outcome = static_cast<Outcome_e>(kind - kFirstOutcome);
            m_end.verdict = Verdict{outcome, std::string(text), m_macro, m_problems};
        }
    }
    std::string ask(char, std::string_view) override { return ""; }

    BlackBox& m_box;
    const TestSetting& m_setting;
    const std::function<Verdict()>& m_work;
    std::string m_macro;
    std::vector<Problem> m_problems;
    ProcessEnd m_end;
    bool m_isStopAsked = false;
};

}  // namespace

ProcessEnd runWatched(const TestSetting& test, BlackBox& box, const std::function<Verdict()>& work) {
    ProcessSetting setting;
    setting.printed = Printed_e::CaughtAsOne;
    setting.kept = kOutputKept;
    setting.keepsEnd = true;
    setting.isTimed = true;
    setting.timeToLeave = kTimeToLeave;
    setting.leavesAtOnce = true;
    setting.readsStacks = test.readsStacks;
    setting.showsWholeStacks = test.showsWholeStacks;
    WatchedTest watched(box, test, work);
    runInProcesses(test.signals, 1, setting, watched);
    return watched.result();
}

}  // namespace vexa::runner
