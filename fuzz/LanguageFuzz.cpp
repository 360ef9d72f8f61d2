// Finds mistakes in macros. A line without a mistake must be one that the library reads, with option classes and with
// the command processor, and the other way round. Every mistake must have a place in its line.

#include <cstdint>
#include <functional>
#include <string>

#include "Fuzz.h"
#include "formats/DescriptionFile.h"
#include "language/Completion.h"
#include "language/LineCheck.h"
#include "language/RandomCases.h"
#include "vexa/VexaUtil.h"
#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/MacroCommandAbstract.h"
#include "vexautilutil/MacroCommandError.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"
#include "vexautilutil/SetMacroOption.h"
#include "vexautilutil/StringMacroOption.h"
#include "vexautilutil/UInt64MacroOption.h"

namespace vexa::fuzz {
namespace {

using namespace vexautilutil;

constexpr int kRandomCommands = 20;

constexpr const char* kDescription = R"({"addon": "A", "commands": [
    {"name": "C", "kind": "command", "purpose": "p", "options": [
        {"name": "B", "type": "Boolean", "repeatable": true, "help": "h"}, {"name": "U", "type": "UInt64", "repeatable": true, "help": "h"},
        {"name": "S", "type": "String", "repeatable": true, "help": "h"}, {"name": "Z", "type": "Set", "repeatable": true, "help": "h"}]},
    {"name": "P", "kind": "processor", "purpose": "p", "options": [
        {"name": "B", "type": "Boolean", "repeatable": true, "help": "h"}, {"name": "I", "type": "Int32", "repeatable": true, "help": "h"},
        {"name": "L", "type": "Int64", "repeatable": true, "help": "h"}, {"name": "D", "type": "Double", "repeatable": true, "help": "h"},
        {"name": "S", "type": "String", "repeatable": true, "help": "h"}, {"name": "R", "type": "String", "repeatable": true, "escapes": false, "help": "h"},
        {"name": "Z", "type": "Set", "repeatable": true, "help": "h"}]}]})";

const runner::Descriptions& described() {
    static const runner::Descriptions descriptions(runner::parseDescription(kDescription, "f").description);
    return descriptions;
}

// ---- The library

constexpr const char* kBlank = " ";

// Returns false if there is no option of this name.
bool readOption(MacroTokenIterator& current, const MacroTokenIterator& end) {
    const std::string name = *current;
    if (name == "B") {
        BooleanMacroOption(current, end, nullptr);
    } else if (name == "U") {
        UInt64MacroOption(current, end, nullptr);
    } else if (name == "S") {
        StringMacroOption(current, end, nullptr);
    } else if (name == "Z") {
        SetMacroOption(current, end, false, nullptr);
    } else {
        return false;
    }
    return current == end || *current == kBlank;
}

bool areReadByClasses(const std::string& options) {
    const MacroTokenizer tokens = MacroCommandAbstract::tokenize(options);
    const MacroTokenIterator end = tokens.end();
    try {
        for (MacroTokenIterator current = tokens.begin(); current != end;) {
            if (*current == kBlank) {
                ++current;
            } else if (!readOption(current, end)) {
                return false;
            }
        }
        return true;
    } catch (const MacroCommandError&) {
        return false;
    }
}

class Options : public MacroCommandProcessorAbstract {
public:
    bool processCommand() override {
        std::string name;
        getCommand(name);
        for (name.clear(); getNextName(name); name.clear()) {
            if (name.size() != 1 || !isRead(name.front())) return false;
        }
        return name.empty();
    }
    bool composeCommandString(std::string&) const override { return false; }

private:
    bool isRead(char name) {
        char truth = 0;
        std::int32_t small = 0;
        std::int64_t large = 0;
        double number = 0;
        std::string text;
        toolbox::Set set;
        switch (name) {
            case 'B': return getBooleanValue(truth);
            case 'I': return getInt32Value(small);
            case 'L': return getInt64Value(large);
            case 'D': return getDoubleValue(number);
            case 'S': return getStringValue(text, true);
            case 'R': return getStringValue(text, false);
            case 'Z': return getSetValue(set);
            default: return false;
        }
    }
};

bool areReadByProcessor(const std::string& text) {
    char* message = nullptr;
    const bool isRead = Options().parseCommandString(text.c_str(), &message);
    if (message != nullptr) VexaUtilStringDealloc(&message);
    return isRead;
}

// ---- The properties

// Returns true if the line has no mistake, apart from an Int32 that is too large: the processor accepts it.
bool isRight(const std::string& line) {
    for (const runner::Diagnostic& found : runner::checkLine(line, described())) {
        const bool isTooLarge = std::string(found.rule) == runner::kOutOfRange;
        if (found.severity == standin::Severity_e::Error && !isTooLarge) return false;
    }
    return true;
}

bool hasOpenQuote(const std::string& line) {
    for (const runner::Diagnostic& found : runner::checkLine(line, described())) {
        if (found.message.find("closing") != std::string::npos) return true;
    }
    return false;
}

void requireSameJudgement(const std::string& value) {
    for (const char name : {'B', 'U', 'S', 'Z'}) {
        const std::string option = std::string(1, name) + '=' + value;
        require(isRight("A C " + option) == areReadByClasses(option), "the option classes read what is right", option);
    }
    for (const char name : {'B', 'I', 'L', 'D', 'S', 'R', 'Z'}) {
        const std::string command = "P " + std::string(1, name) + " = " + value;
        if (hasOpenQuote("A " + command)) continue;           // the processor would wait for the quote forever
        if (value.find("[]") != std::string::npos) continue;  // the processor leaves the bracket unread
        require(isRight("A " + command) == areReadByProcessor(command), "the processor reads what is right", command);
    }
}

// The library reads a random command if the description allows it.
void requireReadIfRight(const runner::RandomCase& random) {
    const bool isRight = random.mistake.empty();
    require(vexa::fuzz::isRight("A " + random.text) == isRight, "a random command is what it says", random.text);
    const std::string& word = random.command->name;
    const bool isRead = random.command->kind == runner::CommandKind_e::Processor
                            ? areReadByProcessor(random.text)
                            : areReadByClasses(random.text.substr(word.size()));
    require(isRead == isRight, "the library reads a random command that is right", random.text);
}

void requireRandomCommands(std::uint64_t seed) {
    runner::RandomCases cases(*described().find("A"), seed);
    for (int i = 0; i != kRandomCommands; ++i) requireReadIfRight(cases.next());
}

void requirePlaces(const std::string& text) {
    std::size_t last = 1;
    for (const runner::Diagnostic& found : runner::checkText(text, described())) {
        require(found.line >= last, "mistakes are in the order of the lines");
        require(found.span.begin < found.span.end && found.span.end <= text.size(), "a mistake has a place");
        require(!found.message.empty() && found.message.find('\n') == std::string::npos, "a message is one line");
        last = found.line;
    }
    const std::string line = text.substr(0, text.find('\n'));
    require(runner::completionAt(line, described()).begin <= line.size(), "completion starts in the line");
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    const std::string text = textOf(data, size);
    requirePlaces(text);
    requirePlaces("A P " + text);
    requireRandomCommands(std::hash<std::string>()(text));
    // The library reads lines, without the white space around them.
    const bool isValue = !text.empty() && text.find_first_of(std::string("\r\n\0", 3)) == std::string::npos &&
                         text.find_first_of(" \t\v\f") != 0 && text.find_last_of(" \t\v\f") != text.size() - 1;
    if (isValue) requireSameJudgement(text);
    return 0;
}
