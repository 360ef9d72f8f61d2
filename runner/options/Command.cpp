#include "options/Command.h"

namespace vexa::runner {
namespace {

template <class Item, class Predicate>
std::vector<const Item*> those(const std::vector<Item>& items, Predicate isOne) {
    std::vector<const Item*> found;
    for (const Item& item : items) {
        if (isOne(item)) found.push_back(&item);
    }
    return found;
}

}  // namespace

std::vector<const Command*> shownCommands(const Command& program) {
    return those(program.commands, [](const Command& command) { return !command.isHidden; });
}

std::vector<std::string> shownNames(const Command& program) {
    std::vector<std::string> names;
    for (const Command* command : shownCommands(program)) names.push_back(command->name);
    return names;
}

std::vector<const Option*> argumentsOf(const Command& command) {
    return those(command.options, [](const Option& option) { return option.isArgument(); });
}

std::vector<const Option*> namedOptionsOf(const Command& command) {
    return those(command.options, [](const Option& option) { return !option.isArgument(); });
}

}  // namespace vexa::runner
