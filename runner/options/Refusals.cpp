#include "options/Refusals.h"

#include <algorithm>
#include <regex>

#include "options/ContractOptions.h"
#include "text/Joined.h"
#include "text/NearNames.h"
#include "text/ShortText.h"
#include "text/StartsWith.h"

namespace vexa::runner {
namespace {

using Names = std::vector<std::string>;

Names longNames(const Command& command) {
    Names all;
    for (const Option& option : command.options) {
        for (const std::string& name : option.names) {
            if (startsWith(name, "--")) all.push_back(name);
        }
    }
    return all;
}

bool isOptionWithoutDashes(const std::string& word, const Command& command) {
    const Names names = longNames(command);
    return std::find(names.begin(), names.end(), "--" + word) != names.end();
}

}  // namespace

std::string noSuchRule(const std::string& name) {
    const std::vector<std::string> near = nearNames(name, ruleNames());
    const std::string message = "there is no rule \"" + name + "\"; ";
    return message + (near.empty() ? "'vexa-standin explain' lists them" : "is " + alternatives(near) + " meant?");
}

std::string noSuchTest(const std::string& name) {
    return "there is no test \"" + name + "\"; 'check --list' lists them";
}

std::string noSuchAddOn(const std::string& id, const std::set<std::string>& loaded) {
    const std::string name = shortText(id);
    const std::vector<std::string> ids(loaded.begin(), loaded.end());
    std::string message = "no add-on '" + name + "' is loaded";
    if (!ids.empty()) message += " (loaded: " + joined(ids, ", ") + ')';
    const std::vector<std::string> near = nearNames(name, ids);
    return near.empty() ? message : message + "; did you mean " + alternatives(near) + '?';
}

std::string unexpectedWords(const std::vector<std::string>& words, const Command& command) {
    const bool isCommand = !command.commands.empty() && !startsWith(words.front(), "-");
    if (isCommand) return "there is no command '" + words.front() + "'";
    return std::string("unexpected argument") + (words.size() == 1 ? "" : "s") + ": " + joined(words, " ");
}

std::string inPlainWords(const std::string& parserText) {
    const std::regex missing("(.*): \\d+ required (.*) missing");
    const std::regex excludes("(.*) excludes (.*)");
    const std::string text = std::regex_replace(parserText, missing, "$1: the value $2 is missing");
    return std::regex_replace(text, excludes, "$1 cannot be used with $2");
}

std::vector<std::string> corrections(const std::vector<std::string>& words, const Command& command) {
    std::vector<std::string> messages;
    const auto correct = [&](const std::string& word, const std::vector<std::string>& names) {
        const std::vector<std::string> near = nearNames(word, names);
        if (!near.empty()) messages.push_back(word + ": did you mean " + alternatives(near) + "?");
    };
    for (const std::string& word : words) {
        const bool isOption = word.size() > 2 && word.front() == '-';
        if (isOption) {
            correct(word.substr(0, word.find('=')), longNames(command));
        } else if (&word == &words.front()) {
            correct(word, isOptionWithoutDashes(word, command) ? Names{"--" + word} : shownNames(command));
        }
    }
    return messages;
}

}  // namespace vexa::runner
