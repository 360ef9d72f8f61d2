#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "vexa/AddOn.h"
#include "vexa/Scanner.h"
#include "vexautilutil/AsciiFile.h"
#include "vexautilutil/ExecuteCommand.h"
#include "vexautilutil/InvalidInstructionsException.h"
#include "vexautilutil/MacroCommandError.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace {

using vexa::vexautilutil::AsciiFile;
using vexa::vexautilutil::executeCommand;
using vexa::vexautilutil::InvalidInstructionsException;
using vexa::vexautilutil::MacroCommandError;

constexpr const char* kId = "PROBES";

struct Probe {
    std::string name;
    double x = 0.0;
    double y = 0.0;
};

// [line]
// A line is a name and two coordinates.
bool readProbe(const std::string& line, Probe& probe) {
    vexa::Scanner scanner;
    scanner.reset(line);
    probe.name = scanner.nextToken();
    if (!scanner.hasNextDoubleToken()) return false;
    probe.x = scanner.nextDoubleToken();
    if (!scanner.hasNextDoubleToken()) return false;
    probe.y = scanner.nextDoubleToken();
    return !scanner.hasNextToken();
}
// [line]

// [file]
std::vector<Probe> readProbes(const std::string& path) {
    AsciiFile file;
    if (!file.open(path)) throw InvalidInstructionsException(path, std::strerror(errno));
    std::vector<Probe> probes;
    while (!file.isEOF()) {
        const uint64_t index = file.currentLineNumber();
        const std::string line = file.readLine();
        if (file.isEmptyLine(index) || file.isCommentLine(index, '#')) continue;
        Probe probe;
        if (!readProbe(line, probe)) {
            file.error("Expected a name and two numbers, but found: " + line);
            throw InvalidInstructionsException(path, "not read");
        }
        probes.push_back(probe);
    }
    return probes;
}
// [file]

// LOAD FILE = 'probes.txt'
class ProbeProcessor : public vexa::vexautilutil::MacroCommandProcessorAbstract {
public:
    explicit ProbeProcessor(const std::string& text)
        : m_isQuoted(std::count(text.begin(), text.end(), '\'') == 2 && text.find('"') == std::string::npos) {}

    // [throw]
    bool processCommand() override {
        std::string word;
        std::string option;
        getCommand(word);
        getNextName(option);
        if (word != "LOAD" || option != "FILE" || !m_isQuoted || !getStringValue(m_path, false)) {
            throw MacroCommandError("Expected LOAD FILE = 'file name'");
        }
        for (const Probe& probe : readProbes(m_path)) {
            std::printf("%s at (%g, %g)\n", probe.name.c_str(), probe.x, probe.y);
        }
        if (!recordMacroCommand(kId)) throw MacroCommandError("The host did not record LOAD");
        return true;
    }
    // [throw]

    bool composeCommandString(std::string& command) const override {
        command = "LOAD " + toNameValueAssignment("FILE", m_path);
        return true;
    }

private:
    const bool m_isQuoted;  // getStringValue() would wait forever for a missing closing quote
    std::string m_path;
};

VexaBoolean execute(const char* command, char** errMsg) {
    return executeCommand([&] { return ProbeProcessor(command).parseCommandString(command, errMsg); }, errMsg);
}

constexpr VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, kId, "Reads probes", execute, nullptr};

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) { return &kDescription; }
