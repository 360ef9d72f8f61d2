#include "commands/check/trial/Trial.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <mutex>

#include "commands/check/trial/BlackBox.h"
#include "session/CoverageNotes.h"
#include "terminal/Console.h"
#include "text/Lines.h"
#include "vexastandin/Finding.h"
#include "vexastandin/Observer.h"

namespace vexa::runner {
namespace {

std::string nameOf(const standin::EntryEvent& entry) {
    switch (entry.kind) {
        case standin::Entry_e::Loading: return "loading of " + entry.addOnId;
        case standin::Entry_e::Unloading: return "unloading of " + entry.addOnId;
        case standin::Entry_e::Command: break;
    }
    return nameOf(MacroCommand{entry.macroLine, entry.addOnId, entry.command});
}

}  // namespace

std::string macroOf(const std::vector<MacroCommand>& steps) {
    std::string text;
    for (const MacroCommand& step : steps) text += step.addOnId + ' ' + step.text + '\n';
    return text;
}

std::vector<MacroCommand> stepsOf(const std::vector<std::string>& lines) {
    std::vector<MacroCommand> steps;
    std::transform(lines.begin(), lines.end(), std::back_inserter(steps), commandOfLine);
    return steps;
}

std::string nameOf(const MacroCommand& step) {
    return step.addOnId + ' ' + step.text + (step.place.empty() ? "" : " (" + step.place + ')');
}

Trial::Trial(const Subject& subject, BlackBox& blackBox)
    : m_subject(subject),
      m_blackBox(blackBox),
      m_random(subject.seed),
      m_end(std::chrono::steady_clock::now() + subject.time) {
    if (subject.coverage) m_coverage.emplace(*subject.coverage, coverageTeller(*blackBox.notes));
}

void Trial::nowTrying(const std::string& what, const std::string& macro) {
    m_blackBox.tried.set(what);
    // A macro that is cut off does not show the error.
    m_blackBox.macro.set(macro.size() <= decltype(m_blackBox.macro)::capacity() ? macro : "");
    m_blackBox.touch();
}

void Trial::warn(const std::string& reason) {
    if (std::find(m_warnings.begin(), m_warnings.end(), reason) == m_warnings.end()) m_warnings.push_back(reason);
}

std::string Trial::warnings() const {
    std::string lines;
    for (const std::string& warning : m_warnings) addLine(lines, warning);
    return lines;
}

// Writes the black box, and passes the events on to the coverage.
class CheckedSession::Recorder : public standin::ObserverInterface {
public:
    /// \param coverage may be null
    Recorder(BlackBox& box, standin::ObserverInterface* coverage) : m_box(box), m_coverage(coverage) {}

    // Entries nest: a command of an add-on may run a command of another add-on.
    void entryBegan(const standin::EntryEvent& entry) override {
        if (m_coverage != nullptr) m_coverage->entryBegan(entry);
        m_entries.push_back(nameOf(entry));
        m_box.entry.set(m_entries.back());
        m_box.hostCall.set("");
        m_box.isInHostCall = false;
        m_box.isInAddOn = true;
        m_box.touch();
    }
    void entryEnded(const standin::EntryEvent& entry) override {
        if (m_coverage != nullptr) m_coverage->entryEnded(entry);
        m_entries.pop_back();
        m_box.isInAddOn = !m_entries.empty();
        if (!m_entries.empty()) m_box.entry.set(m_entries.back());
        m_box.touch();
    }
    void callBegan(const standin::CallEvent& call) override {
        if (m_coverage != nullptr) m_coverage->callBegan(call);
        std::array<char, decltype(m_box.hostCall)::capacity() + 1> text{};
        std::snprintf(text.data(), text.size(), "%zu, %s(%s)", call.number, call.function, call.arguments.c_str());
        const std::lock_guard<std::mutex> lock(m_guard);
        m_box.hostCall.set(text.data());
        m_box.isInHostCall = true;
    }
    void callEnded(const standin::CallEvent& call) override {
        if (m_coverage != nullptr) m_coverage->callEnded(call);
        m_box.isInHostCall = false;
    }
    void findingMade(const standin::Finding&) override {}
    void statusChanged(const standin::StatusLine&) override {}

private:
    BlackBox& m_box;
    standin::ObserverInterface* m_coverage;
    std::vector<std::string> m_entries;
    std::mutex m_guard;  // any thread may call the host
};

CheckedSession::CheckedSession(Trial& trial)
    : m_trial(trial),
      m_recorder(std::make_unique<Recorder>(trial.m_blackBox, trial.m_coverage ? &*trial.m_coverage : nullptr)),
      m_session(trial.subject().options, *trial.m_blackBox.process) {
    host().setKeepsCalls(true);
    host().setObserver(m_recorder.get());
    giveStyles(host(), trial.subject().style);
    try {
        std::string ids;
        for (const std::string& file : trial.subject().options.addOns) addLine(ids, m_session.loadAddOn(file).id);
        trial.m_blackBox.addOnIds.set(ids);
    } catch (const standin::LoadError& error) {
        throw CaseFailed(error.message());
    }
}

CheckedSession::~CheckedSession() = default;

standin::CommandResult CheckedSession::run(const MacroCommand& step) { return m_session.runWithoutSource(step); }

void CheckedSession::runWell(const MacroCommand& step) {
    const standin::CommandResult result = run(step);
    if (result.accepted) return;
    const std::string place = step.place.empty() ? "" : step.place + ": ";
    std::string lines = place + "the command failed: " + step.addOnId + ' ' + step.text;
    addLine(lines, result.error.empty() ? "without a message" : "its message: " + result.error);
    addLine(lines, breaches());
    m_trial.note(problemOf(step, kCommandFailed, std::string(failureText(result))));
    throw CaseFailed(lines);
}

void CheckedSession::runWellAndEnd(const std::vector<MacroCommand>& steps) {
    for (const MacroCommand& step : steps) runWell(step);
    end();
}

std::vector<std::string> CheckedSession::recorded() const {
    std::vector<std::string> lines;
    for (const standin::RecordedCommand& one : m_session.host().recordedCommands()) {
        lines.push_back(one.addOnId + ' ' + one.command);
    }
    return lines;
}

void CheckedSession::expectContractKept() {
    const std::string errors = breaches();
    if (!errors.empty()) throw CaseFailed(errors);
}

void CheckedSession::end() {
    m_session.unloadAddOns();
    expectContractKept();
}

// Returns the findings of severity error. Turns the others into warnings.
std::string CheckedSession::breaches() {
    std::string errors;
    for (const standin::Finding& finding : host().violations()) {
        const std::string text(withoutTrailingBlanks(textOf(finding)));
        m_trial.note(problemOf(finding, m_trial.subject().addOn()));
        if (finding.severity == standin::Severity_e::Warning) {
            m_trial.warn(text);
        } else {
            addLine(errors, text);
        }
    }
    return errors;
}

}  // namespace vexa::runner
