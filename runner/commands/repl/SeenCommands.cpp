#include "commands/repl/SeenCommands.h"

#include <vector>

#include "text/Columns.h"
#include "text/CommandWords.h"
#include "text/Counted.h"
#include "text/Joined.h"
#include "text/Printable.h"

namespace vexa::runner {

void SeenCommands::add(const std::string& addOnId, const std::string& text, bool isAccepted) {
    const CommandWords words(text);
    Seen& seen = m_commands[addOnId][words.word];
    ++seen.runs;
    if (!isAccepted) ++seen.failures;
    for (const CommandWords::Option& option : words.options) seen.options.insert(option.name);
}

std::string SeenCommands::describe(const std::string& addOnId, const std::string& word) const {
    const auto commands = m_commands.find(addOnId);
    if (commands == m_commands.end()) return "";
    std::vector<std::vector<std::string>> rows;
    for (const auto& [name, seen] : commands->second) {
        if (!word.empty() && name != word) continue;
        std::string facts = "run " + counted(seen.runs, "time");
        if (seen.failures != 0) facts += ", " + std::to_string(seen.failures) + " failed";
        if (!seen.options.empty()) facts += "; options: " + printableLine(joined(seen.options, ", "));
        rows.push_back({"  " + printableLine(name), facts});
    }
    return columnsOf(rows);
}

}  // namespace vexa::runner
