// Compares the runner's reader of macro files with a simple one: both must read the same commands and refuse the same
// lines. The host must be able to record each command. The recording and the journal must be macro files of the same
// commands.

#include <algorithm>
#include <string_view>
#include <vector>

#include "Fuzz.h"
#include "formats/MacroFile.h"
#include "formats/MacroText.h"

namespace vexa::fuzz {
namespace {

using runner::MacroCommand;
using runner::MacroFile;

constexpr const char* kName = "m.macro";
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
    explicit PlainReader(std::string_view text) {
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
        commands.push_back({std::string(kName) + ':' + std::to_string(number), addOnId, std::string(line)});
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

    bool m_isAtEnd = false;  // true after a NUL
};

MacroFile readText(const std::string& text) { return runner::macroIn(text, kName, kAddOnIds); }

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

// ---- Writing

// The host records no command that it could not read back.
bool isRecorded(const std::string& command) {
    return command.find_first_not_of(" \t\n\v\f\r") != std::string::npos &&
           command.find_first_of("\r\n") == std::string::npos && kBlanks.find(command.front()) == std::string::npos;
}

std::vector<standin::RecordedCommand> recordingOf(const std::vector<MacroCommand>& commands) {
    std::vector<standin::RecordedCommand> recording;
    for (const MacroCommand& command : commands) {
        require(isRecorded(command.text), "a command that was read can be recorded", command.text);
        recording.push_back({command.addOnId, command.text, {}});
    }
    return recording;
}

void requireReadBack(const std::string& text, const std::vector<MacroCommand>& commands) {
    const MacroFile again = readText(text);
    require(again.problems.empty(), "what is written is a macro file", text);
    require(areEqual(again.commands, commands, isSame), "it has the same commands", text);
}

// Returns journal entries for the commands, the first one with `data`.
std::vector<standin::JournalEntry> journalOf(const std::vector<MacroCommand>& commands, const std::string& data) {
    std::vector<standin::JournalEntry> entries;
    entries.reserve(commands.size());
    for (const MacroCommand& command : commands) entries.push_back({command.addOnId, command.text, std::nullopt});
    if (!entries.empty()) entries.front().journalData = data;
    return entries;
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    const std::string text = textOf(data, size);
    const MacroFile macro = readText(text);
    const PlainReader plain(text);
    require(areEqual(macro.commands, plain.commands, isSameOnSameLine), "the commands are those of the lines", text);
    requireRefusals(macro, plain.refused);

    requireReadBack(vexa::runner::recordingText(recordingOf(macro.commands)), macro.commands);
    const std::string cText = text.substr(0, text.find('\0'));  // the host takes C strings, which end at a NUL
    const auto journal = journalOf(macro.commands, cText);
    requireReadBack(vexa::runner::journalText(journal), macro.commands);
    return 0;
}
