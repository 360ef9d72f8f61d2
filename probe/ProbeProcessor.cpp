#include "probe/ProbeProcessor.h"

#include <algorithm>
#include <iterator>
#include <sstream>

namespace vexa::probe {
namespace {

constexpr const char* kQuotes = "'\"";
constexpr const char* kWhiteSpace = " \t\n\r\v\f";

// The processor would wait forever for the end of such a text.
bool hasOpenQuote(const std::string& text) {
    std::size_t open = text.find_first_of(kQuotes);
    while (open != std::string::npos) {
        const std::size_t close = text.find(text[open], open + 1);
        if (close == std::string::npos) return true;
        open = text.find_first_of(kQuotes, close + 1);
    }
    return false;
}

bool isAmong(const std::string& names, const std::string& name) {
    std::istringstream words(names);
    return std::find(std::istream_iterator<std::string>(words), {}, name) != std::istream_iterator<std::string>();
}

std::string stripped(const std::string& text) {
    const std::size_t first = text.find_first_not_of(kWhiteSpace);
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

}  // namespace

bool ProbeProcessor::parseCommandString(const char* commandString, char** errMsg) {
    m_text = std::string(commandString);
    return MacroCommandProcessorAbstract::parseCommandString(commandString, errMsg);
}

bool ProbeProcessor::processCommand() {
    m_probe.startCommand(m_text.c_str());
    if (hasOpenQuote(m_text)) return refuse("a quote is not closed");
    std::string word;
    getCommand(word);
    return run(word);
}

bool ProbeProcessor::composeCommandString(std::string& command) const {
    command = stripped(m_text);
    return true;
}

bool ProbeProcessor::run(const std::string& word) {
    if (word == "WRITE") return write();
    if (word == "WATCH") return watch();
    if (word == "FAIL") return fail();
    if (word == "NOTE") return note();
    return refuse("unknown command " + word + "; known are WRITE, WATCH, FAIL and NOTE");
}

bool ProbeProcessor::write() {
    Options options;
    if (!readOptions("FILE RISKY SETTING", options)) return false;
    if (options.file.empty()) return refuse("WRITE needs FILE = 'facts.json'");
    m_probe.write(options.file, options.setting, options.isRisky != 0);
    return true;
}

bool ProbeProcessor::watch() {
    Options options;
    if (!readOptions("FILE", options)) return false;
    if (options.file.empty()) return refuse("WATCH needs FILE = 'facts.json'");
    m_probe.watch(options.file);
    return true;
}

bool ProbeProcessor::fail() {
    Options options;
    if (!readOptions("", options)) return false;
    m_probe.noteFailure();
    return refuse("this command fails on purpose");
}

bool ProbeProcessor::note() {
    Options options;
    if (!readOptions("TEXT", options)) return false;
    return recordMacroCommand(m_probe.id()) || refuse("NOTE was not recorded");
}

bool ProbeProcessor::readOptions(const std::string& names, Options& options) {
    std::string name;
    while (getNextName(name)) {
        if (!isAmong(names, name)) return refuse("unknown option " + name);
        if (!readOption(name, options)) return false;
        name.clear();
    }
    return name.empty() || refuse("expected = after " + name);
}

bool ProbeProcessor::readOption(const std::string& name, Options& options) {
    if (name == "RISKY") return getBooleanValue(options.isRisky) || refuse("expected TRUE or FALSE for RISKY");
    std::string& value = name == "FILE" ? options.file : name == "SETTING" ? options.setting : options.text;
    return getStringValue(value, false) || refuse("expected a quoted text for " + name);
}

bool ProbeProcessor::refuse(const std::string& reason) {
    depositErrorMessage("Error: " + reason);
    return false;
}

}  // namespace vexa::probe
