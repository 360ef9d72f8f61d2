#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "commands/check/tests/DescribedDefaults.h"
#include "commands/check/tests/Tests.h"
#include "commands/check/tests/UndescribedOptions.h"
#include "language/CommandCases.h"
#include "language/LineCheck.h"
#include "language/MacroLine.h"
#include "language/RandomCases.h"
#include "terminal/Console.h"
#include "text/Lines.h"
#include "vexastandin/RandomCommands.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kMostMistakes = 20;
constexpr std::size_t kRandomSessions = 40;
constexpr std::size_t kCommandsOfASession = 25;

// What is wrong between a description and its add-on. All of it is reported, because one change of an add-on often
// makes several parts of the description wrong.
class Mistakes {
public:
    void add(const std::string& mistake) {
        if (std::find(m_all.begin(), m_all.end(), mistake) != m_all.end()) return;
        if (m_all.size() < kMostMistakes) m_all.push_back(mistake);
        ++m_count;
    }

    bool isEmpty() const { return m_count == 0; }

    /// \throws CaseFailed if there are mistakes.
    void conclude(const Subject& subject) const {
        if (isEmpty()) return;
        std::string reason = "the description " + subject.descriptionFile + " does not fit the add-on:";
        for (const std::string& mistake : m_all) addLine(reason, mistake);
        if (m_count > m_all.size()) addLine(reason, "and " + std::to_string(m_count - m_all.size()) + " more");
        throw CaseFailed(reason);
    }

private:
    std::vector<std::string> m_all;
    std::size_t m_count = 0;
};

// The outcome of a command of the description.
struct Outcome {
    bool isAccepted = false;
    std::string error;
    std::vector<std::string> recorded;  // lines with the add-on's id
};

// Commands that ran, and how the report names them.
struct Tried {
    std::string what;
    std::string macro;
};

class DescriptionTrial {
public:
    explicit DescriptionTrial(Trial& trial) : m_trial(trial), m_addOn(*trial.subject().description) {}

    const AddOnDescription& addOn() const { return m_addOn; }
    // Returns what ran last.
    const Tried& tried() const { return m_tried; }

    // Adds a mistake, which \p tried shows. The report of the test then has the macro of the first mistake.
    void report(const std::string& mistake, const Tried& tried = {}) {
        if (m_mistakes.isEmpty()) m_firstWrong = tried;
        m_mistakes.add(mistake);
    }

    Verdict conclude() {
        if (!m_mistakes.isEmpty()) m_trial.nowTrying(m_firstWrong.what, m_firstWrong.macro);
        m_mistakes.conclude(m_trial.subject());
        return {Outcome_e::Passed, std::to_string(m_count) + " commands"};
    }

    // Runs a command in a new session, after the commands that it needs, while the host records.
    Outcome run(const CommandDescription& command, const std::string& text) {
        ++m_count;
        std::vector<MacroCommand> steps = stepsBefore(command);
        const MacroCommand step = stepOf(text);
        steps.push_back(step);
        nowTrying("of the description: " + nameOf(step), steps);
        CheckedSession session(m_trial);
        requireId(session);
        steps.pop_back();
        for (const MacroCommand& earlier : steps) session.runWell(earlier);
        session.host().setRecording(true);
        const standin::CommandResult result = session.run(step);
        Outcome outcome{result.accepted, result.error, session.recorded()};
        session.end();
        return outcome;
    }

    std::vector<MacroCommand> stepsBefore(const CommandDescription& command) const {
        std::vector<MacroCommand> steps;
        for (const std::string& text : command.before) steps.push_back(stepOf(text));
        return steps;
    }

    // Runs random commands in one session, after the commands that any of them needs, in random modes of the host. It
    // must refuse those that the description forbids, whatever ran before.
    void runRandom(std::uint64_t seed) {
        RandomCases cases(m_addOn, seed);
        standin::RandomCommands modes(seed);
        CheckedSession session(m_trial);
        requireId(session);
        std::vector<MacroCommand> steps = stepsBeforeAll();
        for (const MacroCommand& earlier : steps) session.runWell(earlier);
        for (std::size_t i = 0; i != kCommandsOfASession; ++i) {
            const RandomCase random = cases.next();
            steps.push_back(stepOf(random.text));
            nowTrying("at random, by the description: " + nameOf(steps.back()), steps);
            modes.setModes(session.host());
            const bool isAccepted = session.run(steps.back()).accepted;
            ++m_count;
            if (isAccepted && !random.mistake.empty()) {
                report("accepts " + random.text + " (" + random.mistake + ')', m_tried);
            }
            session.expectContractKept();
        }
        for (const std::string& line : session.recorded()) checkText("records", line);
        session.end();
    }

    std::vector<MacroCommand> stepsBeforeAll() const {
        std::vector<std::string> texts;
        for (const CommandDescription& command : m_addOn.commands) {
            for (const std::string& text : command.before) {
                if (std::find(texts.begin(), texts.end(), text) == texts.end()) texts.push_back(text);
            }
        }
        std::vector<MacroCommand> steps;
        steps.reserve(texts.size());
        for (const std::string& text : texts) steps.push_back(stepOf(text));
        return steps;
    }

    // Reports what the description does not have.
    void checkRecorded(const Outcome& outcome) {
        for (const std::string& line : outcome.recorded) checkText("records", line, m_tried);
    }

    void checkText(const std::string& does, const std::string& line, const Tried& tried = {}) {
        if (line.compare(0, m_addOn.addOn.size() + 1, m_addOn.addOn + ' ') != 0) return;
        const std::string start = does + ' ' + line + ": ";
        for (const Diagnostic& diagnostic : checkLine(line, Descriptions(m_addOn))) {
            if (diagnostic.severity == standin::Severity_e::Error) report(start + diagnostic.message, tried);
        }
    }

    Trial& trial() { return m_trial; }

private:
    void nowTrying(const std::string& what, const std::vector<MacroCommand>& steps) {
        m_tried = {what, macroOf(steps)};
        m_trial.nowTrying(m_tried.what, m_tried.macro);
    }

    MacroCommand stepOf(const std::string& text) const { return {"", m_addOn.addOn, text}; }

    void requireId(CheckedSession& session) const {
        const std::string id = session.host().addOns().front().id;
        if (id == m_addOn.addOn) return;
        throw CaseFailed("the description " + m_trial.subject().descriptionFile + " is of the add-on " + m_addOn.addOn +
                         ", but the id of this add-on is " + id);
    }

    Trial& m_trial;
    const AddOnDescription& m_addOn;
    Tried m_tried;
    Mistakes m_mistakes;
    Tried m_firstWrong;
    std::size_t m_count = 0;
};

std::string refusalText(const std::string& text, const std::string& what, const std::string& error) {
    return "refuses " + text + (what.empty() ? "" : " (" + what + ')') + ": " +
           (error.empty() ? "without a message" : joinedLines(std::string(withoutTrailingBlanks(error))));
}

// One of the texts of a case has to be accepted.
void requireAccepted(DescriptionTrial& described, const CommandDescription& command, const CommandCase& accepted) {
    std::optional<std::string> refusal;
    Tried refused;
    for (const std::string& text : accepted.texts) {
        const Outcome outcome = described.run(command, text);
        described.checkRecorded(outcome);
        if (outcome.isAccepted) return;
        if (refusal) continue;
        refusal = refusalText(text, accepted.what, outcome.error);
        refused = described.tried();
    }
    described.report(*refusal, refused);
}

// Reports an option that the add-on reads as an Int32: the recorded value is then another one.
void requireWholeInteger(DescriptionTrial& described, const CommandDescription& command, const LargeInteger& large) {
    const Descriptions descriptions(described.addOn());
    const Outcome outcome = described.run(command, large.text);
    for (const std::string& line : outcome.recorded) {
        for (const WrittenOption& option : parseLine(line, descriptions).options) {
            const std::string value(textOf(option.value, line));
            if (option.description == nullptr || option.description->name != large.option) continue;
            if (value == large.value) continue;
            described.report(
                "records " + large.text + " with " + large.option + " = " + value + ": it reads an Int32, not an Int64",
                described.tried());
        }
    }
}

}  // namespace

Verdict descriptionExamples(Trial& trial) {
    DescriptionTrial described(trial);
    for (const CommandDescription& command : described.addOn().commands) {
        for (const std::string& example : command.examples) {
            described.checkText("has the example", described.addOn().addOn + ' ' + example);
            requireAccepted(described, command, {"an example", {example}});
        }
    }
    for (const MacroCommand& step : trial.subject().steps) {
        described.checkText(step.place.empty() ? "runs" : step.place + " has", step.addOnId + ' ' + step.text);
    }
    return described.conclude();
}

Verdict descriptionOptions(Trial& trial) {
    DescriptionTrial described(trial);
    for (const CommandDescription& command : described.addOn().commands) {
        for (const CommandCase& accepted : acceptedCases(described.addOn(), command)) {
            requireAccepted(described, command, accepted);
        }
        const RecordCommand record = [&](const std::string& text) { return described.run(command, text).recorded; };
        for (const std::string& mistake : wrongDefaults(described.addOn(), command, record)) {
            described.report(mistake);
        }
    }
    return described.conclude();
}

Verdict descriptionRefusals(Trial& trial) {
    DescriptionTrial described(trial);
    for (const CommandDescription& command : described.addOn().commands) {
        for (const CommandCase& refused : refusedCases(described.addOn(), command)) {
            const std::string& text = refused.texts.front();
            if (!described.run(command, text).isAccepted) continue;
            described.report("accepts " + text + " (" + refused.what + ')', described.tried());
        }
        for (const LargeInteger& large : largeIntegers(described.addOn(), command)) {
            requireWholeInteger(described, command, large);
        }
    }
    return described.conclude();
}

Verdict descriptionRandom(Trial& trial) {
    DescriptionTrial described(trial);
    for (std::size_t i = 0; i != kRandomSessions; ++i) described.runRandom(trial.random()());
    return described.conclude();
}

Verdict descriptionComplete(Trial& trial) {
    DescriptionTrial described(trial);
    for (const std::string& name : undescribedCommands(trial, described.addOn())) {
        described.report("the add-on has a command " + name + ", which is not described");
    }
    for (const CommandDescription& command : described.addOn().commands) {
        const std::string least = leastCommand(described.addOn(), command);
        for (const std::string& name :
             undescribedOptions(trial, described.addOn(), command, described.stepsBefore(command), least)) {
            described.report(command.name + " has an option " + name + ", which is not described");
        }
    }
    described.conclude();
    return {};
}

}  // namespace vexa::runner
