#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "commands/Commands.h"
#include "options/CommonOptions.h"
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

constexpr const char* kProbeFooter = R"(A facts file says how a host answers where its interface leaves that open. The
probe is an add-on, vexa-probe.so, so it asks any host. The page "The real host"
of the documentation shows how to run it there, and lists the facts.

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
    std::string output;
};

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
        m_host.run(kId, "FAIL");
        if (m_host.goesOnAfterFailure()) m_host.run(kId, "NOTE TEXT = 'after the failure'");
        m_session.unloadAddOns();
        return areFactsWritten;
    }

private:
    bool run(const char* addOnId, const std::string& command) {
        const standin::CommandResult result = m_session.run({"", addOnId, command});
        if (!result.accepted) tell(addOnId, failureText(result));
        return result.accepted;
    }

    // Some questions are asked only while the host records, and one only while it does not.
    void switchRecording() { m_host.setRecording(VexaUtilMacroIsRecordingActive() == 0); }

    std::string m_file;
    std::unique_ptr<ProcessBox> m_box = std::make_unique<ProcessBox>();
    Session m_session;
    standin::Host& m_host = m_session.host();
};

ExitStatus_e probe(ProbeOptions& options) {
    if (!readHostFacts(options)) return ExitStatus_e::BadUsageOrInput;
    for (const char* const name : kProbes) options.addOns.push_back(probeFile(name));
    inputsOf(options).write(options.output);
    WholeOutput output(options.output);
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
    command.add(option({"-o", "--output"}, "FILE.json", "The facts file", &options->output).require());
    addHostOption(command, options->contract);
    command.run = [options] { return probe(*options); };
    return command;
}

}  // namespace vexa::runner
