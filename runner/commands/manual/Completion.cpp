#include "commands/manual/Completion.h"

#include <CLI/CLI.hpp>

#include "commands/check/tests/TestCatalogue.h"
#include "options/CommandTree.h"
#include "text/StartsWith.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

// In the script COMMANDS stands for all of them, and CASES for what each of them takes.
constexpr const char* kScript = R"(# bash completion of vexa-standin. Generated from its command line.

_vexa_standin() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' options='' values='' i
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
            COMMANDS) command=${COMP_WORDS[i]}; break ;;
        esac
    done
    case $command in
CASES    esac
    COMPREPLY=()
    # An empty reply has bash complete file names.
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
    elif [[ $values == none ]]; then
        compopt +o default
    elif [[ $values != files ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$values" -- "$word")
        compopt +o default
    fi
}

complete -o default -F _vexa_standin vexa-standin
)";

std::string joined(const std::vector<std::string>& words, const char* between) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
    return text;
}

std::string ruleNames() {
    std::vector<std::string> names;
    for (const standin::Rule& rule : standin::rules()) names.emplace_back(rule.name);
    return joined(names, " ");
}

std::string testNames() {
    std::vector<std::string> names;
    for (const CheckTest& test : checkTests()) names.emplace_back(test.name);
    return joined(names, " ");
}

// What stands for a value of this name: words, `files` or `none`.
std::string valuesFor(const std::string& name) {
    if (name == "RULE") return ruleNames();
    if (name == "NAME") return testNames();
    if (name == "WHEN") return "auto always never";
    for (const char* file : {"FILE", "MACRO", "TRACE", "FOLDER"}) {
        if (startsWith(name, file)) return "files";
    }
    return "none";
}

std::string caseOf(const CLI::App& command, const std::string& name, const std::string& words) {
    std::vector<std::string> options;
    std::string values;
    for (const CLI::Option* option : namedOptions(command)) {
        const std::vector<std::string> names = namesOf(*option);
        options.insert(options.end(), names.begin(), names.end());
        const std::string value = valueNameOf(*option);
        if (!value.empty())
            values += "                " + joined(names, "|") + ") values='" + valuesFor(value) + "' ;;\n";
    }
    return "        " + name + ")\n            options='" + joined(options, " ") + "' values='" + words +
           "'\n            case $before in\n" + values + "                *) ;;\n            esac\n            ;;\n";
}

void replace(std::string& text, const std::string& placeholder, const std::string& with) {
    text.replace(text.find(placeholder), placeholder.size(), with);
}

}  // namespace

std::string bashCompletion(const CLI::App& app) {
    std::vector<std::string> names;
    std::string cases;
    for (const CLI::App* command : shownCommands(app)) {
        const std::vector<const CLI::Option*> places = positionals(*command);
        names.push_back(command->get_name());
        cases +=
            caseOf(*command, command->get_name(), places.empty() ? "none" : valuesFor(valueNameOf(*places.front())));
    }
    cases += caseOf(app, "*", joined(names, " "));
    std::string script = kScript;
    replace(script, "COMMANDS", joined(names, "|"));
    replace(script, "CASES", cases);
    return script;
}

}  // namespace vexa::runner
