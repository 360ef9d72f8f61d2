#include "options/Corrections.h"

#include <CLI/CLI.hpp>

#include "options/CommandTree.h"
#include "text/NearNames.h"

namespace vexa::runner {
namespace {

std::vector<std::string> subcommandsOf(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* subcommand : shownCommands(app)) names.push_back(subcommand->get_name());
    return names;
}

std::vector<std::string> optionsOf(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
    return names;
}

}  // namespace

std::string unexpectedWords(const CLI::App& app) {
    const std::vector<std::string> words = app.remaining(true);
    std::string text =
        words.size() == 1 ? "The following argument was not expected:" : "The following arguments were not expected:";
    for (const std::string& word : words) text += ' ' + word;
    return text;
}

std::vector<std::string> corrections(const CLI::App& app) {
    const std::vector<CLI::App*> parsed = app.get_subcommands();
    std::vector<std::string> messages;
    const auto correct = [&](const std::string& word, const std::vector<std::string>& names) {
        const std::vector<std::string> near = nearNames(word, names);
        if (!near.empty()) messages.push_back(word + ": did you mean " + alternatives(near) + "?");
    };
    bool isFirst = true;
    for (const std::string& word : app.remaining(true)) {
        const bool isOption = word.size() > 2 && word.front() == '-';
        if (isOption) {
            correct(word.substr(0, word.find('=')), optionsOf(parsed.empty() ? app : *parsed.front()));
        } else if (isFirst && parsed.empty()) {
            correct(word, subcommandsOf(app));
        }
        isFirst = false;
    }
    return messages;
}

}  // namespace vexa::runner
