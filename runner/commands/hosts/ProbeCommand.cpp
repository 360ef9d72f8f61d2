#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "commands/Commands.h"
#include "facts/Facts.h"
#include "options/PrintedOutput.h"
#include "options/UsageError.h"
#include "session/Session.h"
#include "system/files/OutputTarget.h"
#include "system/files/RunFiles.h"
#include "system/files/TemporaryFolder.h"
#include "system/files/WholeFile.h"
#include "system/files/WholeOutput.h"
#include "terminal/Console.h"
#include "vexa/VexaUtil.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

constexpr const char* kProbeFooter =
    R"(Hosts may differ where their interface permits more than one answer. A facts file
lists the answers of one host. This command asks the stand-in host. The probe
itself is an add-on, vexa-probe.so, so it can ask any host: the page "The real
host" of the documentation shows how.

Example:
  vexa-standin probe -o standin.json
  vexa-standin compare-hosts standin.json real.json

Exit status:
  0  the file was written
  2  wrong usage or input; a file could not be read or written)";

constexpr const char* kProbes[] = {"vexa-probe.so", "vexa-probe-second.so"};
constexpr const char* kId = "VEXAPROBE";
constexpr const char* kSecondId = "VEXAPROBE2";

// The setting that the probe asks for. It has a value for one pair of offsets only.
const std::vector<std::string> kSetting = {"VEXAPROBE", "SETTING", "LINETHICKNESS"};
constexpr double kValue = 0.25;

struct ProbeOptions : SessionOptions {
    std::optional<std::string> output;
    bool markdown = false;  // print the page of all facts
};

constexpr const char* kPageHead = R"(# Facts about hosts

<!-- Printed by `vexa-standin probe --markdown`; a test compares the two. -->

These are the questions that the probe asks a host. [The real host](real-host.md) shows how to run it, and how to make
the stand-in answer like another host. The columns are:

- **fact**: the name of the fact in facts files.
- **asked**: "always", or only with `RISKY = TRUE`. A *risky* question keeps the contract, but a careless host may
  crash or hang. A question *against the contract* breaks a rule, so the stand-in reports it.
- **stand-in**: the answer of the stand-in.
- **imitates**: the other answers that the stand-in can give with `--host`.

| fact | question | asked | stand-in | imitates |
|---|---|---|---|---|
)";

std::string riskText(facts::Risk_e risk) {
    switch (risk) {
        case facts::Risk_e::None: return "always";
        case facts::Risk_e::MayEndHost: return "risky";
        case facts::Risk_e::BreaksContract: return "against the contract";
    }
    return "";
}

// `|` separates the columns of the page.
std::string otherWords(std::string words, const std::string& standIn) {
    words.erase(0, standIn.size() + 1);
    std::string text = "`";
    for (const char c : words) text += c == '|' ? std::string("`, `") : std::string(1, c);
    return text + '`';
}

std::string imitationText(const facts::FactInfo& info) {
    switch (info.kind) {
        case facts::Kind_e::Truth: return std::string(info.standIn) == "true" ? "`false`" : "`true`";
        case facts::Kind_e::Code: return "the other codes";
        case facts::Kind_e::Count: return "smaller numbers";
        case facts::Kind_e::Word: return otherWords(info.limit, info.standIn);
        case facts::Kind_e::Fixed: return std::string("none: ") + info.limit;
    }
    return "";
}

ExitStatus_e printPage() {
    std::string page = kPageHead;
    for (const facts::FactInfo& info : facts::kFacts) {
        page += std::string("| `") + info.name + "` | " + info.question + " | " + riskText(info.risk) + " | `" +
                info.standIn + "` | " + imitationText(info) + " |\n";
    }
    print(page);
    return checkOutput(ExitStatus_e::AllWell);
}

// The installed probe; in a build tree the one that was built with this program.
std::string probeFile(const std::string& name) {
    const fs::path folder = fs::read_symlink("/proc/self/exe").parent_path();
    const fs::path installed = folder / VEXA_BIN_TO_LIB / "vexa-standin" / name;
    const fs::path built = folder.parent_path() / "probe" / name;
    return (fs::exists(installed) ? installed : built).lexically_normal();
}

// A stand-in host that is asked all questions, and what is known only after several commands.
class ProbedHost {
public:
    ProbedHost(const ProbeOptions& options, std::string factsFile)
        : m_file(std::move(factsFile)), m_session(options, *m_box) {
        m_host.setStyle(kSetting, 0, 0, kValue);
    }

    bool ask() {
        if (!m_session.loadAddOns()) return false;
        const std::string file = " FILE = '" + m_file + '\'';
        const std::string write = "WRITE" + file + " RISKY = TRUE SETTING = 'VEXAPROBE SETTING LINETHICKNESS'";
        bool areFactsWritten = run(kId, write);
        switchRecording();
        areFactsWritten = areFactsWritten && run(kId, write) && run(kSecondId, "WATCH" + file);
        areFactsWritten &= mayRefuse("FAIL", "this command fails on purpose");
        if (m_host.goesOnAfterFailure()) {
            areFactsWritten &= mayRefuse("NOTE TEXT = 'after the failure'", "NOTE was not recorded");
        }
        m_session.unloadAddOns();
        return areFactsWritten;
    }

private:
    bool run(const char* addOnId, const std::string& command) {
        const standin::CommandResult result = m_session.run({"", addOnId, command});
        if (!result.accepted) tell(addOnId, failureText(result));
        return result.accepted;
    }

    // Returns false if the command fails for another reason: it could not write the facts.
    bool mayRefuse(const char* command, const char* reason) {
        const standin::CommandResult result = m_host.run(kId, command);
        const bool isWell = result.accepted || result.error.empty() || result.error.find(reason) != std::string::npos;
        if (!isWell) tell(kId, failureText(result));
        return isWell;
    }

    // Some questions are asked only while the host records, and one only while it does not.
    void switchRecording() { m_host.setRecording(VexaUtilMacroIsRecordingActive() == 0); }

    std::string m_file;
    std::unique_ptr<ProcessBox> m_box = std::make_unique<ProcessBox>();
    Session m_session;
    standin::Host& m_host = m_session.host();
};

ExitStatus_e probe(ProbeOptions& options) {
    if (options.markdown) return printPage();
    if (!readHostFacts(options)) return ExitStatus_e::BadUsageOrInput;
    for (const char* const name : kProbes) options.addOns.push_back(probeFile(name));
    inputsOf(options).write(options.output);
    WholeOutput output(*options.output);
    try {
        const TemporaryFolder folder("vexa-standin-probe");
        const std::string facts = folder.path() / "facts.json";
        if (!ProbedHost(options, facts).ask()) return ExitStatus_e::BadUsageOrInput;
        output.replace(readWholeFile(facts));
        return ExitStatus_e::AllWell;
    } catch (const std::system_error& error) {
        tell(kProgramName, error.what());
        return ExitStatus_e::BadUsageOrInput;
    }
}

}  // namespace

Command probeCommand() {
    const auto options = std::make_shared<ProbeOptions>();
    Command command{"probe", "Write the facts about the stand-in host", kProbeFooter};
    command.add(option({"-o", "--output"}, "FILE.json", "The facts file", &options->output).exclude("--markdown"));
    addHostOption(command, options->contract);
    command.add(flag({"--markdown"}, "Print the page of all facts", &options->markdown).exclude("--output"));
    command.check = [options] {
        if (!options->output && !options->markdown) throw UsageError("--output is required");
    };
    command.run = [options] { return probe(*options); };
    return command;
}

}  // namespace vexa::runner
