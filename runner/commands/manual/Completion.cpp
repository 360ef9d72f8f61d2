#include "commands/manual/Completion.h"

namespace vexa::runner {

std::vector<std::string> completedCommands(const Command& program) {
    std::vector<std::string> names;
    for (const Command* command : shownCommands(program)) names.push_back(command->name);
    return names;
}

std::string joined(const std::vector<std::string>& words, const std::string& between) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
    return text;
}

void fillIn(std::string& text, const std::string& placeholder, const std::string& with) {
    text.replace(text.find(placeholder), placeholder.size(), with);
}

}  // namespace vexa::runner
