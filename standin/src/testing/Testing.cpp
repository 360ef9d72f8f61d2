#include "vexastandin/Testing.h"

#include <cstddef>
#include <ostream>
#include <utility>

#include "vexa/InvalidArgumentException.h"

namespace vexa::standin {
namespace {

// Returns the findings of `now` that are not in `before`, or that count more repeats than there.
std::vector<Finding> newFindings(const std::vector<Finding>& before, const std::vector<Finding>& now) {
    std::vector<Finding> made;
    for (std::size_t i = 0; i < now.size(); ++i) {
        if (i >= before.size() || now[i].repeats != before[i].repeats) made.push_back(now[i]);
    }
    return made;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const TestedCommand& command) {
    out << command.command << (command.accepted ? ": accepted\n" : ": failed: ") << command.error;
    if (!command.accepted) out << '\n';
    for (const std::string& recorded : command.recorded) out << "    recorded: " << recorded << '\n';
    for (const std::string& dialog : command.dialogs) out << "    dialog: " << dialog << '\n';
    for (const Finding& finding : command.findings) out << finding;
    return out;
}

std::ostream& operator<<(std::ostream& out, const Finding& finding) { return out << textOf(finding); }

AddOnTester::AddOnTester(const std::string& path) {
    m_host.setRecording(true);
    m_id = m_host.loadAddOn(path).id;
}

AddOnTester::AddOnTester(AddOnEntry entry) {
    m_host.setRecording(true);
    m_id = m_host.linkAddOn(entry).id;
}

AddOnTester::~AddOnTester() = default;

TestedCommand AddOnTester::run(const std::string& command) {
    const std::size_t recordedBefore = m_host.recordedCommands().size();
    const std::size_t dialogsBefore = m_host.dialogs().size();
    const std::vector<Finding> findingsBefore = m_host.violations();

    TestedCommand tested;
    tested.command = m_id + ' ' + command;
    CommandResult result = m_host.run(m_id, command);
    tested.accepted = result.accepted;
    tested.error = std::move(result.error);

    const std::vector<RecordedCommand> recorded = m_host.recordedCommands();
    for (std::size_t i = recordedBefore; i < recorded.size(); ++i) tested.recorded.push_back(recorded[i].command);
    const std::vector<std::string> dialogs = m_host.dialogs();
    for (std::size_t i = dialogsBefore; i < dialogs.size(); ++i) tested.dialogs.push_back(dialogs[i]);
    tested.findings = newFindings(findingsBefore, m_host.violations());
    return tested;
}

ExpectNoFindings::ExpectNoFindings(Host& host, std::function<void(const std::string& text)> report)
    : m_host(host), m_report(std::move(report)), m_causes(nullptr) {
    if (!m_report) throw InvalidArgumentException("Without a report no test would fail over a finding");
}

ExpectNoFindings::ExpectNoFindings(Host& host, std::function<void(const std::string& text)> report,
                                   FindingCauses& causes)
    : ExpectNoFindings(host, std::move(report)) {
    m_causes = &causes;
}

ExpectNoFindings::~ExpectNoFindings() {
    m_host.unloadAddOns();
    for (const Finding& finding : m_host.violations()) {
        const bool isNew = m_causes == nullptr || m_causes->add(finding);
        m_report(isNew ? textOf(finding) : briefTextOf(finding));
    }
}

}  // namespace vexa::standin
