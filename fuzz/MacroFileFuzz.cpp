// Compares the runner's reader of macro files with a simple one: both must read the same commands and refuse the same
// lines. Add-ons then record each command. The recording and the journal must be macro files of the same commands.

#include <algorithm>
#include <string_view>
#include <vector>

#include "MemoryFile.h"
#include "formats/MacroFile.h"
#include "formats/MacroText.h"
#include "vexa/AddOn.h"
#include "vexastandin/Host.h"

namespace vexa::fuzz {
namespace {

using runner::MacroCommand;
using runner::MacroFile;

const std::set<std::string> kAddOnIds = {"ONE", "TWO"};
constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool isSame(const MacroCommand& a, const MacroCommand& b) { return a.addOnId == b.addOnId && a.text == b.text; }

bool isSameOnSameLine(const MacroCommand& a, const MacroCommand& b) { return a.place == b.place && isSame(a, b); }

template <class Comparison>
bool areEqual(const std::vector<MacroCommand>& a, const std::vector<MacroCommand>& b, const Comparison& comparison) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), comparison);
}

// ---- Reading

class PlainReader {
public:
    PlainReader(std::string_view text, const std::string& name) : m_name(name) {
        for (std::size_t number = 1; !text.empty() && !m_isAtEnd; ++number) {
            const std::size_t lineEnd = std::min(text.find('\n'), text.size());
            take(number, text.substr(0, lineEnd));
            text.remove_prefix(std::min(lineEnd + 1, text.size()));
        }
    }

    std::vector<MacroCommand> commands;
    std::vector<std::size_t> refused;  // lines

private:
    void take(std::size_t number, std::string_view line) {
        m_isAtEnd = line.find('\0') != std::string_view::npos;
        if (m_isAtEnd) return refused.push_back(number);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (line.find('\r') != std::string_view::npos) return refused.push_back(number);
        if (number == 1 && line.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
            line.remove_prefix(kByteOrderMark.size());
        }
        const std::string addOnId = takeWord(line);
        if (addOnId.empty() || addOnId.front() == '#') return;
        const bool isBlank = line.find_first_not_of(" \t\v\f\r") == std::string_view::npos;
        if (kAddOnIds.count(addOnId) == 0 || isBlank) return refused.push_back(number);
        commands.push_back({m_name + ':' + std::to_string(number), addOnId, std::string(line)});
    }

    // Takes the first word and the blanks before and after it.
    static std::string takeWord(std::string_view& line) {
        skipBlanks(line);
        std::string word(line.substr(0, line.find_first_of(kBlanks)));
        line.remove_prefix(word.size());
        skipBlanks(line);
        return word;
    }

    static void skipBlanks(std::string_view& line) {
        line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
    }

    std::string m_name;
    bool m_isAtEnd = false;  // true after a NUL
};

MacroFile readText(const std::string& text) {
    const MemoryFile file(text);
    MacroFile macro = runner::readMacroFile(file.path(), kAddOnIds);
    require(macro.name == file.path(), "the file has its name", macro.name);
    return macro;
}

void requireRefusals(const MacroFile& macro, const std::vector<std::size_t>& lines) {
    require(macro.problems.size() == lines.size(), "the lines refused are those that are wrong");
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string& problem = macro.problems[i];
        const std::string place = macro.place(lines[i]) + ": ";
        require(problem.size() > place.size() && problem.compare(0, place.size(), place) == 0,
                "a problem begins with its place", problem);
        require(problem.find_first_of(std::string_view("\r\n\0", 3)) == std::string::npos, "a problem is one line",
                problem);
        require(problem.size() < place.size() + 300, "a problem is short", problem);
    }
}

// ---- Running, with one add-on for each id

template <const char* const& id>
VexaBoolean recordIt(const char* command, char**) {
    return VexaUtilMacroRecordExtCommand(id, command);
}

template <const char* const& id>
const VexaAddOn_s* addOn(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, id, nullptr, recordIt<id>, nullptr};
    return &description;
}

constexpr const char* kOne = "ONE";
constexpr const char* kTwo = "TWO";

std::vector<standin::RecordedCommand> recordingOf(const std::vector<MacroCommand>& commands) {
    standin::Host host;
    host.setKeepsCalls(false);
    host.setRecording(true);
    host.linkAddOn(addOn<kOne>);
    host.linkAddOn(addOn<kTwo>);
    for (const MacroCommand& command : commands) {
        require(host.run(command.addOnId, command.text).accepted, "a command that was read is recorded", command.text);
    }
    require(host.violations().empty(), "nothing is held against the add-ons");
    return host.recordedCommands();
}

void requireReadBack(const std::string& text, const std::vector<MacroCommand>& commands) {
    const MacroFile again = readText(text);
    require(again.problems.empty(), "what is written is a macro file", text);
    require(areEqual(again.commands, commands, isSame), "it has the same commands", text);
}

// Returns journal entries for the commands, each with `data`.
std::vector<standin::JournalEntry> journalOf(const std::vector<MacroCommand>& commands, const std::string& data) {
    std::vector<standin::JournalEntry> entries;
    entries.reserve(commands.size());
    for (const MacroCommand& command : commands) entries.push_back({command.addOnId, command.text, data});
    return entries;
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    const std::string text = textOf(data, size);
    const MacroFile macro = readText(text);
    const PlainReader plain(text, macro.name);
    require(areEqual(macro.commands, plain.commands, isSameOnSameLine), "the commands are those of the lines", text);
    requireRefusals(macro, plain.refused);

    requireReadBack(vexa::runner::recordingText(recordingOf(macro.commands)), macro.commands);
    const std::string cText = text.substr(0, text.find('\0'));  // the host takes C strings, which end at a NUL
    const auto journal = journalOf(macro.commands, cText);
    requireReadBack(vexa::runner::journalText(journal), macro.commands);
    return 0;
}
