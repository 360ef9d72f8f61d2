#include "commands/check/MacroShrinker.h"

#include <sys/wait.h>

#include <algorithm>
#include <exception>
#include <numeric>
#include <set>
#include <utility>
#include <vector>

#include "commands/check/trial/BlackBox.h"
#include "commands/check/trial/Confinement.h"
#include "commands/check/trial/FreeRun.h"
#include "text/Lines.h"

namespace vexa::runner {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kTimeForAll = std::chrono::seconds(30);
constexpr milliseconds kTimeForATry =
    std::chrono::seconds(1);  // the time limit of a try; a command that hung hangs again

std::string brokenRules(const std::vector<standin::Finding>& findings) {
    std::set<std::string> names;
    for (const standin::Finding& finding : findings) {
        if (finding.severity == standin::Severity_e::Error) names.insert(finding.rule + ' ');
    }
    return std::accumulate(names.begin(), names.end(), std::string());
}

class Shrinker {
public:
    Shrinker(const TestSetting& setting, const Subject& subject, std::vector<MacroCommand> steps)
        : m_setting(setting), m_subject(subject), m_steps(std::move(steps)) {}

    std::vector<MacroCommand> shrink() {
        std::vector<MacroCommand> whole = m_steps;
        m_symptom = symptomOf(whole, m_setting.timeout);
        if (m_symptom.empty()) return whole;
        dropSteps();
        for (std::size_t i = m_steps.size(); i-- > 0;) shortenStep(i);
        // Checks the result with the time limit of users, because the tries had a shorter one.
        return symptomOf(m_steps, m_setting.timeout) == m_symptom ? m_steps : whole;
    }

private:
    // Returns a key for the error that the commands show; empty if they show none.
    std::string symptomOf(const std::vector<MacroCommand>& steps, milliseconds timeout) const {
        const ProcessEnd end =
            runWatched({m_setting.signals, false, timeout, nullptr, false}, *m_box, [&] { return verdictOn(steps); });
        if (end.hasTimedOut()) return "hangs";
        if (WIFSIGNALED(end.waitStatus)) return "signal " + std::to_string(WTERMSIG(end.waitStatus));
        if (!end.verdict) return "exit " + std::to_string(WEXITSTATUS(end.waitStatus));
        return end.verdict->reason;
    }

    // Called in the process of a try.
    Verdict verdictOn(const std::vector<MacroCommand>& steps) const {
        try {
            if (m_subject.confinement != nullptr) m_subject.confinement->enter();
            Trial trial(m_subject, *m_box);
            return {Outcome_e::Passed, brokenRules(findingsOf(trial, steps))};
        } catch (const std::exception&) {  // not an error of the add-on
            return {};
        }
    }

    // Keeps `smaller` if it shows the same error.
    bool takeIfSame(std::vector<MacroCommand> smaller) {
        if (BlackBox::Clock::now() > m_end) return false;
        if (symptomOf(smaller, std::min(m_setting.timeout, kTimeForATry)) != m_symptom) return false;
        m_steps = std::move(smaller);
        return true;
    }

    void dropSteps() {
        if (m_steps.size() < 2 || takeIfSame({m_steps.back()})) return;
        for (std::size_t i = m_steps.size() - 1; i-- > 0;) {
            std::vector<MacroCommand> fewer = m_steps;
            fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(i));
            takeIfSame(std::move(fewer));
        }
    }

    // Removes pieces, large ones first, until no byte can be removed.
    void shortenStep(std::size_t index) {
        const auto text = [&]() -> const std::string& { return m_steps[index].text; };
        for (std::size_t size = text().size(); size > 0;) {
            bool hasCut = false;
            for (std::size_t at = 0; at < text().size();) {
                const bool isCut = cut(index, at, size);
                hasCut |= isCut;
                if (!isCut) at += size;
            }
            // After a cut, single bytes are tried again, because the text that needed them may be gone.
            const bool isDone = size == 1 && !hasCut;
            size = isDone ? 0 : (size + 1) / 2;
        }
    }

    bool cut(std::size_t index, std::size_t at, std::size_t size) {
        std::vector<MacroCommand> shorter = m_steps;
        shorter[index].text.erase(at, size);
        return fitsMacroLine(shorter[index].text) && takeIfSame(std::move(shorter));
    }

    const TestSetting& m_setting;
    const Subject& m_subject;
    std::vector<MacroCommand> m_steps;
    std::string m_symptom;
    SharedMemory<BlackBox> m_box;
    BlackBox::Clock::time_point m_end = BlackBox::Clock::now() + kTimeForAll;
};

}  // namespace

std::string shrunkMacro(const TestSetting& setting, const Subject& subject, const std::string& macro) {
    return macroOf(Shrinker(setting, subject, stepsOf(linesOf(macro))).shrink());
}

}  // namespace vexa::runner
