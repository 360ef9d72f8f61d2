#include "session/Session.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "formats/HostFactsFile.h"
#include "session/FindingPrinter.h"
#include "session/watch/Death.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

constexpr std::chrono::seconds kTimeForLastWords{5};

}  // namespace

bool readHostFacts(SessionOptions& options) {
    const std::optional<std::string>& file = options.contract.host;
    if (!file) return true;
    const auto facts = readHostFacts(*file);
    if (!facts) return false;
    options.facts = answersOf(*facts);
    for (const standin::UnlikeFact& fact : standin::unlikeFacts(options.facts)) {
        tell(*file, "not imitated: " + fact.name + " = " + fact.answer + "; " + fact.reason);
    }
    return true;
}

RunFiles inputsOf(const SessionOptions& options) {
    RunFiles files;
    files.read(options.addOns);
    files.read(options.style);
    files.read(options.contract.projectFile);
    files.read(options.contract.host);
    return files;
}

std::string_view failureText(const standin::CommandResult& result) {
    const std::string_view message = withoutTrailingBlanks(result.error);
    return message.empty() ? "the command failed without a message" : message;
}

std::string failureWithSource(const standin::CommandResult& result) {
    const std::string& source = result.place.source.text;
    return std::string(failureText(result)) + (source.empty() ? "" : '\n' + source);
}

bool isContractBroken(const standin::Host& host, const ContractOptions& options) {
    const std::vector<standin::Finding> findings = host.violations();
    return options.isStrict() && std::any_of(findings.begin(), findings.end(), [&](const standin::Finding& finding) {
               return options.warningsAsErrors.value_or(false) || finding.severity == standin::Severity_e::Error;
           });
}

// While an object of this class lives, the box names the work of the session, and the time limit applies.
class Session::TimeInAddOn : NonCopyable {
public:
    TimeInAddOn(Session& session, const MacroCommand& work, std::size_t times = 1)
        : m_box(session.m_box), m_watchdog(session.m_watchdog) {
        m_box.enter(work.place, work.addOnId, work.text);
        if (!m_watchdog) return;
        const Watchdog::Seconds limit = *session.m_options.contract.timeout * static_cast<double>(times);
        m_box.allow(std::chrono::ceil<ProcessBox::Clock::duration>(limit));
        m_watchdog->start(limit);
    }
    // If the add-on forked a copy of the process, the copy ends here, so that it does not go on with the session.
    ~TimeInAddOn() {
        if (m_box.isOfOther()) _exit(EXIT_FAILURE);
        if (m_watchdog) {
            m_watchdog->stop();
            m_box.allow({});
        }
        m_box.leaveAddOn();
    }

private:
    ProcessBox& m_box;
    std::optional<Watchdog>& m_watchdog;
};

Session::Session(const SessionOptions& options, ProcessBox& box, ConcludeOverrun conclude)
    : m_options(options),
      m_box(box),
      m_sources(options.contract.showsStacks ? ShownStack_e::Whole : ShownStack_e::OwnLine) {
    m_host.onFinding([this](standin::Finding& finding) { m_sources.complete(finding); });
    m_host.setCallProgress(&box.calls);
    m_host.setKeepsCalls(false);
    m_host.answerLike(options.facts);
    if (options.batch) m_host.setBatchMode(true);
    for (const std::string& rule : options.contract.suppressed) m_host.suppress(rule);
    if (options.contract.timeout && conclude) m_watchdog.emplace([this, conclude] { endProcess(conclude); });
}

standin::AddOnInfo Session::loadAddOn(const std::string& file) {
    const TimeInAddOn time(*this, {"", "", "loading of " + file});
    return m_host.loadAddOn(file);
}

bool Session::loadAddOns() {
    bool allLoaded = true;
    for (const std::string& file : m_options.addOns) {
        try {
            loadAddOn(file);
        } catch (const standin::LoadError& error) {
            tell(error.message());
            allLoaded = false;
        }
    }
    return allLoaded;
}

void Session::unloadAddOns() {
    std::string work = "unloading of";
    const std::vector<standin::AddOnInfo> addOns = m_host.addOns();
    for (const standin::AddOnInfo& addOn : addOns) work += ' ' + addOn.id;
    const TimeInAddOn time(*this, {"", "", work}, std::max<std::size_t>(addOns.size(), 1));
    m_host.unloadAddOns();
}

MacroFile Session::readMacro(const std::string& file, UnknownId_e unknownId) {
    m_isReading = true;
    MacroFile macro;
    {
        const TimeInAddOn time(*this, {"", "", "reading of " + file});
        macro = readMacroFile(file, addOnIds(), unknownId);
    }
    m_isReading = false;
    return macro;
}

standin::CommandResult Session::run(const MacroCommand& command) {
    standin::CommandResult result = runWithoutSource(command);
    m_sources.completeFailure(result.place);
    return result;
}

standin::CommandResult Session::runWithoutSource(const MacroCommand& command) {
    const TimeInAddOn time(*this, command);
    return m_host.run(command.addOnId, command.text, command.place);
}

void Session::hintAtLines() { runner::hintAtLines(m_sources); }

std::set<std::string> Session::addOnIds() const {
    std::set<std::string> ids;
    for (const standin::AddOnInfo& addOn : m_host.addOns()) ids.insert(addOn.id);
    return ids;
}

// The add-on still runs, and may hold locks, or block the standard output if nobody reads it. If this function waits
// for them, the watching process ends this one.
void Session::endProcess(const ConcludeOverrun& conclude) {
    Overrun overrun{{m_box.place.text(), m_box.addOnId.text(), m_box.work.text()}, m_box.limit(), std::nullopt};
    m_box.allow(kTimeForLastWords);
    if (!m_isReading) overrun.finding = hangFinding(m_host.lastCall(), m_box.callsBefore, overrun.limit);
    const int status = conclude(overrun);
    m_box.report(status);
    m_box.markLeft();
    _exit(status);
}

}  // namespace vexa::runner
