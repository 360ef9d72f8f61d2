#pragma once

#include <string>

#include "probe/Probe.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace vexa::probe {

/// Reads the commands of the probe.
///
///     WRITE FILE = 'facts.json' RISKY = TRUE SETTING = 'FRAME LINETHICKNESS'
///     WATCH FILE = 'facts.json'
///     FAIL
///     NOTE TEXT = 'any text'
///
/// NOTE does nothing but record itself: the probe records and journals such commands to see what the host answers.
class ProbeProcessor : public vexautilutil::MacroCommandProcessorAbstract {
public:
    /// \param probe must live longer.
    explicit ProbeProcessor(Probe& probe) : m_probe(probe) {}

    bool parseCommandString(const char* commandString, char** errMsg) override;
    bool processCommand() override;
    bool composeCommandString(std::string& command) const override;

private:
    /// The options of a command, each with the type that its command reads.
    struct Options {
        std::string file;
        std::string setting;
        std::string text;
        char isRisky = 0;
    };

    bool run(const std::string& word);
    bool write();
    bool watch();
    bool fail();
    bool note();
    /// Reads the options that \p names lists, separated by blanks.
    bool readOptions(const std::string& names, Options& options);
    bool readOption(const std::string& name, Options& options);
    bool refuse(const std::string& reason);

    Probe& m_probe;
    std::string m_text;  // the command, as the host passed it
};

}  // namespace vexa::probe
