#include "formats/DescriptionText.h"

#include <nlohmann/json.hpp>
#include <vector>

namespace vexa::runner {
namespace {

std::string quoted(const std::string& text) {
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string memberText(const char* name, const std::string& json) { return std::string(", \"") + name + "\": " + json; }

std::string valueText(const std::string& value, OptionType_e type) {
    if (type == OptionType_e::Boolean) return value == "TRUE" ? "true" : "false";
    return isNumber(type) ? value : quoted(value);
}

std::string listText(const std::vector<std::string>& texts, const char* separator) {
    std::string list;
    for (const std::string& text : texts) list += (list.empty() ? "" : separator) + text;
    return list;
}

std::vector<std::string> allQuoted(const std::vector<std::string>& texts) {
    std::vector<std::string> all;
    all.reserve(texts.size());
    for (const std::string& text : texts) all.push_back(quoted(text));
    return all;
}

std::string optionText(const OptionDescription& option) {
    std::string text = "{\"name\": " + quoted(option.name) + memberText("type", quoted(nameOf(option.type)));
    if (!option.values.empty()) text += memberText("values", '[' + listText(allQuoted(option.values), ", ") + ']');
    if (option.defaultValue) text += memberText("default", valueText(*option.defaultValue, option.type));
    if (!option.without.empty()) text += memberText("without", quoted(option.without));
    if (option.min) text += memberText("min", option.min->text);
    if (option.max) text += memberText("max", option.max->text);
    if (option.isRequired) text += memberText("required", "true");
    if (option.isRepeatable) text += memberText("repeatable", "true");
    if (!option.mayBeEmpty) text += memberText("mayBeEmpty", "false");
    if (!option.hasEscapes) text += memberText("escapes", "false");
    return text + memberText("help", quoted(option.help)) + '}';
}

// A member of a command that is a list with an item per line; nothing if the list is empty.
std::string listMember(const char* name, const std::vector<std::string>& items) {
    if (items.empty()) return "";
    return std::string(",\n      \"") + name + "\": [\n        " + listText(items, ",\n        ") + "\n      ]";
}

std::string commandText(const CommandDescription& command) {
    std::vector<std::string> options;
    options.reserve(command.options.size());
    for (const OptionDescription& option : command.options) options.push_back(optionText(option));
    return "    {\n      \"name\": " + quoted(command.name) + ",\n      \"kind\": " + quoted(nameOf(command.kind)) +
           ",\n      \"purpose\": " + quoted(command.purpose) + listMember("options", options) +
           listMember("before", allQuoted(command.before)) + listMember("examples", allQuoted(command.examples)) +
           "\n    }";
}

}  // namespace

std::string descriptionText(const AddOnDescription& description) {
    std::vector<std::string> commands;
    commands.reserve(description.commands.size());
    for (const CommandDescription& command : description.commands) commands.push_back(commandText(command));
    return "{\n  \"addon\": " + quoted(description.addOn) + ",\n  \"commands\": [\n" + listText(commands, ",\n") +
           "\n  ]\n}\n";
}

}  // namespace vexa::runner
