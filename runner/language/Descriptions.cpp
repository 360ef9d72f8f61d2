#include "language/Descriptions.h"

#include <algorithm>
#include <utility>

namespace vexa::runner {
namespace {

// ASCII only, because descriptions have no other names.
char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool areEqualInAnyCase(std::string_view one, std::string_view other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char a, char b) { return upper(a) == upper(b); });
}

template <class Items>
std::vector<std::string> namesOf(const Items& items) {
    std::vector<std::string> names;
    names.reserve(items.size());
    for (const auto& item : items) names.push_back(item.name);
    return names;
}

}  // namespace

void Descriptions::add(AddOnDescription description) {
    std::string id = description.addOn;
    m_byId.insert_or_assign(std::move(id), std::move(description));
}

const AddOnDescription* Descriptions::find(std::string_view id) const {
    const auto found = m_byId.find(id);
    return found == m_byId.end() ? nullptr : &found->second;
}

std::vector<std::string> Descriptions::ids() const {
    std::vector<std::string> all;
    for (const auto& [id, description] : m_byId) all.push_back(id);
    return all;
}

const CommandDescription* findCommand(const AddOnDescription& addOn, std::string_view word) {
    for (const CommandDescription& command : addOn.commands) {
        if (areEqualInAnyCase(command.name, word)) return &command;
    }
    return nullptr;
}

const OptionDescription* findOption(const CommandDescription& command, std::string_view name) {
    const bool isAnyCase = command.kind == CommandKind_e::Processor;
    for (const OptionDescription& option : command.options) {
        if (isAnyCase ? areEqualInAnyCase(option.name, name) : option.name == name) return &option;
    }
    return nullptr;
}

std::vector<std::string> commandNames(const AddOnDescription& addOn) { return namesOf(addOn.commands); }

std::vector<std::string> optionNames(const CommandDescription& command) { return namesOf(command.options); }

}  // namespace vexa::runner
