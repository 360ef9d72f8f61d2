#include "commands/test/TestWatch.h"

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "commands/test/MacroPaths.h"
#include "commands/test/WatchedFiles.h"
#include "session/ProjectSettings.h"
#include "system/files/FolderWatch.h"
#include "terminal/Console.h"
#include "text/Joined.h"
#include "text/Printable.h"

namespace vexa::runner {
namespace {

using Clock = std::chrono::steady_clock;
using Stamps = WatchedFiles::Stamps;

// How long no file must change before the tests start. Builds and editors often write several files.
constexpr std::chrono::milliseconds kQuiet{200};

constexpr std::size_t kMostNamed = 5;

std::string named(const std::set<std::string>& files) {
    std::vector<std::string> names;
    for (const std::string& file : files) {
        if (names.size() == kMostNamed) {
            names.push_back("and " + std::to_string(files.size() - kMostNamed) + " more");
            break;
        }
        names.push_back(file);
    }
    return joined(names, ", ");
}

bool isThere(const Stamps& stamps, const std::string& file) {
    const auto found = stamps.find(file);
    return found != stamps.end() && found->second.isThere;
}

void say(const std::string& line) {
    print(printableLine(line) + '\n');
    std::fflush(stdout);
}

class TestWatch {
public:
    explicit TestWatch(const TestOptions& options) : m_options(options) { m_files.set(options); }

    ExitStatus_e run() {
        while (waitForChange()) {
            const std::size_t before = m_verdicts.size();
            const ExitStatus_e status = runRound();
            if (status == ExitStatus_e::Stopped || m_signals.wasInterrupted()) break;
            const bool hasStarted = !m_isFirst || m_verdicts.size() != before;
            if (status == ExitStatus_e::BadUsageOrInput && !hasStarted) return status;
            m_isFirst = false;
            say("waiting for changes; Ctrl-C ends");
        }
        return ExitStatus_e::AllWell;
    }

private:
    // ---- Waiting

    // Waits until a file has changed, and until no file changes any more. Returns false when the user ends the watch.
    bool waitForChange() {
        Stamps seen;
        Clock::time_point seenAt = Clock::now();
        std::string told;
        for (;;) {
            m_watch.setFolders(m_files.folders());
            const Stamps now = m_files.stamps();
            if (!m_isFirst && now != seen) seenAt = Clock::now();
            seen = now;
            const bool isNew = m_isFirst || now != m_known;
            const bool isQuiet = m_isFirst || Clock::now() - seenAt >= kQuiet;
            const std::string missing = isNew && isQuiet ? whatIsMissing(now) : "";
            if (isNew && isQuiet && missing.empty()) {
                m_settled = now;
                return true;
            }
            if (!missing.empty() && missing != told) say(told = missing);
            const bool settles = isNew && !isQuiet;
            if (!sleep(settles ? static_cast<int>(kQuiet.count()) : -1)) return false;
        }
    }

    // While an add-on is built, its file may be missing for a while, or be there in part.
    std::string whatIsMissing(const Stamps& now) const {
        for (const std::string& addOn : m_options.addOns) {
            if (!isThere(now, addOn)) return "waiting for " + addOn;
        }
        for (const std::string& file : WatchedFiles::difference(m_known, now)) {
            if (isBeingWritten(file)) return "waiting until " + file + " is written";
        }
        return "";
    }

    // Returns false when the user ends the watch.
    bool sleep(int milliseconds) const {
        pollfd polled[] = {{m_signals.descriptor(), POLLIN, 0}, {m_watch.descriptor(), POLLIN, 0}};
        poll(polled, std::size(polled), milliseconds);
        m_watch.forget();
        while (const auto signal = m_signals.next()) {
            if (*signal == SIGINT) return false;
            if (endsProgram(*signal)) throw EndedBySignal{*signal};
            if (*signal == SIGTSTP) raise(SIGSTOP);
        }
        return true;
    }

    // ---- A round

    ExitStatus_e runRound() {
        TestOptions options = m_options;
        const bool isRead = addProjectFile(options.contract);
        m_files.set(options);
        m_settled.merge(m_files.stamps());  // the project file may name another file
        const std::set<std::string> changed = WatchedFiles::difference(m_known, m_settled);
        m_known = m_settled;
        if (!m_isFirst) say("changed: " + named(changed));
        if (!isRead || !readHostFacts(options)) {
            m_mustRunAll = true;
            return ExitStatus_e::BadUsageOrInput;
        }
        return test(options, changed);
    }

    ExitStatus_e test(TestOptions& options, const std::set<std::string>& changed) {
        std::set<std::string> tested;
        const TestRound round = {m_signals, [this](const std::string& macro) { return isOutdated(macro); },
                                 [&](const std::string& macro, bool hasPassed) {
                                     tested.insert(macro);
                                     m_verdicts[macro] = hasPassed;
                                 }};
        if (!m_mustRunAll) options.paths = pathsToTest(changed);
        const ExitStatus_e status = options.paths.empty() ? ExitStatus_e::AllWell : testMacros(options, &round);
        m_mustRunAll = status == ExitStatus_e::BadUsageOrInput && tested.empty();
        if (status != ExitStatus_e::Stopped && !m_mustRunAll) summarize(tested);
        return status;
    }

    std::vector<std::string> pathsToTest(const std::set<std::string>& changed) const {
        const auto isShared = [this](const std::string& file) { return m_files.isShared(file); };
        if (std::any_of(changed.begin(), changed.end(), isShared)) return m_options.paths;
        std::set<std::string> macros;
        for (const std::string& file : changed) {
            const std::string macro = besideOf(file, kMacro);
            if (isThere(m_known, macro)) macros.insert(macro);
        }
        return {macros.begin(), macros.end()};
    }

    bool isOutdated(const std::string& macro) const {
        const Stamps now = m_files.stampsFor(macro);
        return std::any_of(now.begin(), now.end(), [this](const auto& stamped) {
            const auto known = m_known.find(stamped.first);
            return known == m_known.end() || known->second != stamped.second || isBeingWritten(stamped.first);
        });
    }

    void summarize(const std::set<std::string>& tested) {
        std::set<std::string> failing;
        std::size_t passing = 0;
        for (auto verdict = m_verdicts.begin(); verdict != m_verdicts.end();) {
            if (!isThere(m_known, verdict->first)) {
                verdict = m_verdicts.erase(verdict);
                continue;
            }
            if (verdict->second) ++passing;
            if (!verdict->second && tested.count(verdict->first) == 0) failing.insert(verdict->first);
            ++verdict;
        }
        if (!failing.empty()) say("still failing: " + named(failing));
        say(std::to_string(tested.size()) + " run; " + std::to_string(passing) + " of " +
            std::to_string(m_verdicts.size()) + " macros pass");
    }

    const TestOptions& m_options;
    const AwaitedSignals m_signals;
    FolderWatch m_watch;
    WatchedFiles m_files;
    Stamps m_known;    // before the last round
    Stamps m_settled;  // before the next round
    std::map<std::string, bool> m_verdicts;
    bool m_isFirst = true;
    bool m_mustRunAll = true;
};

}  // namespace

ExitStatus_e watchTests(const TestOptions& options) {
    try {
        return TestWatch(options).run();
    } catch (const std::system_error& error) {
        tell(kProgramName, std::string("error: ") + error.what());
        return ExitStatus_e::BadUsageOrInput;
    }
}

}  // namespace vexa::runner
