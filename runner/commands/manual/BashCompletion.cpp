#include "commands/manual/Forms.h"

namespace vexa::runner {
namespace {

// In the script, COMMANDS stands for the names of the commands, and CASES for the options of each command.
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

// Returns the candidates for a value: words, `files` or `none`.
std::string valuesOf(const Option& option) {
    if (!option.words.empty()) return joined(option.words, " ");
    return option.takesFiles() ? "files" : "none";
}

std::string caseOf(const Command& command, const std::string& name, const std::string& words) {
    std::vector<std::string> options;
    std::string values;
    for (const Option* option : namedOptionsOf(command)) {
        const std::vector<std::string>& names = option->names;
        options.insert(options.end(), names.begin(), names.end());
        if (option->valueName.empty()) continue;
        values += "                " + joined(names, "|") + ") values='" + valuesOf(*option) + "' ;;\n";
    }
    return "        " + name + ")\n            options='" + joined(options, " ") + "' values='" + words +
           "'\n            case $before in\n" + values + "                *) ;;\n            esac\n            ;;\n";
}

}  // namespace

std::string bashCompletion(const Command& program) {
    const std::vector<std::string> names = shownNames(program);
    std::string cases;
    for (const Command* command : shownCommands(program)) {
        const std::vector<const Option*> arguments = argumentsOf(*command);
        cases += caseOf(*command, command->name, arguments.empty() ? "none" : valuesOf(*arguments.front()));
    }
    cases += caseOf(program, "*", joined(names, " "));
    std::string script = kScript;
    fillIn(script, "COMMANDS", joined(names, "|"));
    fillIn(script, "CASES", cases);
    return script;
}

}  // namespace vexa::runner
