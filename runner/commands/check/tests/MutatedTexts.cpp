#include "commands/check/tests/Tests.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "commands/check/tests/CommandText.h"
#include "commands/check/trial/FreeRun.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

// A command to damage.
struct Original {
    std::vector<MacroCommand> before;  // the commands before it
    MacroCommand step;
    std::vector<DamagedText> damages;
};

class Mutations {
public:
    explicit Mutations(Trial& trial) : m_trial(trial) {
        const std::string addOnId = CheckedSession(trial).host().addOns().front().id;
        m_originals.push_back({{}, {"", addOnId, "NAME = 'text'"}, strangeTexts()});
        std::vector<MacroCommand> before;
        for (const MacroCommand& step : trial.subject().steps) {
            m_originals.push_back({before, step, damaged(step.text)});
            before.push_back(step);
        }
    }

    Verdict run() {
        const bool all = trySystematically();
        tryAtRandom();
        std::string reason = std::to_string(m_count) + " texts";
        if (!all) reason += "; the time was over before every kind was tried";
        return {Outcome_e::Passed, reason};
    }

private:
    // Takes one text of each original in turn, so that every original gets its share of the time. Returns true if there
    // was time for all texts.
    bool trySystematically() {
        bool hasMore = true;
        for (std::size_t round = 0; hasMore; ++round) {
            hasMore = false;
            for (const Original& original : m_originals) {
                if (round >= original.damages.size()) continue;
                if (m_trial.isTimeUp()) return false;
                hasMore = true;
                tryText(original, original.damages[round].how, original.damages[round].text);
            }
        }
        return true;
    }

    void tryAtRandom() {
        while (!m_trial.isTimeUp()) {
            const Original& original = m_originals[m_trial.random()() % m_originals.size()];
            tryText(original, "damaged at random", damagedAtRandom(original.step.text, m_trial.random()));
        }
    }

    void tryText(const Original& original, const std::string& how, const std::string& text) {
        ++m_count;
        std::vector<MacroCommand> steps = original.before;
        steps.push_back({original.step.place, original.step.addOnId, text});
        const std::string macro = fitsMacroLine(text) ? macroOf(steps) : "";
        m_trial.nowTrying(how + ": " + original.step.addOnId + ' ' + text, macro);
        std::string errors;
        for (const standin::Finding& finding : findingsOf(m_trial, steps)) {
            if (finding.severity == standin::Severity_e::Error) {
                errors += textOf(finding);
            } else if (m_warned.insert(finding.rule).second) {
                m_trial.warn(textOf(finding));
            }
        }
        if (!errors.empty()) throw CaseFailed(errors, macro);
    }

    Trial& m_trial;
    std::vector<Original> m_originals;
    std::set<std::string>
        m_warned;  // rules with a warning; each gets one, because thousands of texts break the same rule
    std::size_t m_count = 0;
};

}  // namespace

Verdict mutatedTexts(Trial& trial) { return Mutations(trial).run(); }

}  // namespace vexa::runner
