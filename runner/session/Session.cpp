#include "session/Session.h"

#include <unistd.h>

#include <algorithm>

#include "session/watch/Death.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

constexpr std::chrono::seconds kTimeForLastWords{5};

}  // namespace

RunFiles inputsOf(const SessionOptions& options) {
    RunFiles files;
    files.read(options.addOns);
    files.read(options.style);
    files.read(options.contract.projectFile);
    return files;
}

Session::Session(const SessionOptions& options, ProcessBox& box, ConcludeOverrun conclude)
    : m_options(options), m_box(box) {
    m_host.setCallProgress(&box.calls);
    m_host.setKeepsCalls(false);
    m_host.setBatchMode(options.batch);
    for (const std::string& rule : options.contract.suppressed) m_host.suppress(rule);
    if (options.contract.timeout && conclude) m_watchdog.emplace([this, conclude] { endProcess(conclude); });
}

standin::AddOnInfo Session::loadAddOn(const std::string& file) {
    return inTime({"", "", "loading of " + file}, 1, [&] { return m_host.loadAddOn(file); });
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
    inTime({"", "", work}, std::max<std::size_t>(addOns.size(), 1), [&] { m_host.unloadAddOns(); });
}

MacroFile Session::readMacro(const std::string& file, UnknownId_e unknownId) {
    const auto read = [&] { return readMacroFile(file, addOnIds(), unknownId); };
    m_isReading = true;
    MacroFile macro = inTime({"", "", "reading of " + file}, 1, read);
    m_isReading = false;
    return macro;
}

standin::CommandResult Session::run(const MacroCommand& command) {
    return inTime(command, 1, [&] { return m_host.run(command.addOnId, command.text, command.place); });
}

std::set<std::string> Session::addOnIds() const {
    std::set<std::string> ids;
    for (const standin::AddOnInfo& addOn : m_host.addOns()) ids.insert(addOn.id);
    return ids;
}

bool Session::isContractBroken() const {
    const ContractOptions& contract = m_options.contract;
    const std::vector<standin::Finding> findings = m_host.violations();
    return contract.isStrict() && std::any_of(findings.begin(), findings.end(), [&](const standin::Finding& finding) {
               return contract.warningsAsErrors.value_or(false) || finding.severity == standin::Severity_e::Error;
           });
}

template <class Work>
std::invoke_result_t<Work> Session::inTime(const MacroCommand& entered, std::size_t times, const Work& work) {
    const TimeInAddOn time(m_box, entered.place, entered.addOnId, entered.text);
    if (!m_watchdog) return work();
    const Watchdog::Seconds limit = *m_options.contract.timeout * static_cast<double>(times);
    const AllowedTime allowed(m_box, limit);
    const WatchedTime watched(*m_watchdog, limit);
    return work();
}

// The add-on goes on meanwhile, and may hold locks, or the standard output if nobody reads it. If this waits for them,
// the process that watches this one ends it.
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
