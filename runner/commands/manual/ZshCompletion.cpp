#include "commands/manual/Forms.h"

namespace vexa::runner {
namespace {

// In the script, COMMANDS stands for the names of the commands, OPTIONS for the options of the program, and CASES for
// the options of each command.
constexpr const char* kScript = R"(#compdef vexa-standin
# zsh completion of vexa-standin. Generated from its command line.

_vexa-standin() {
    local curcontext=$curcontext state line
    local -a names=(
COMMANDS    )
    _arguments -C \
OPTIONS        '1: :->command' '*:: :->arguments'
    case $state in
        command) _describe -t commands command names ;;
        arguments)
            case $words[1] in
CASES            esac
            ;;
    esac
}

if [[ $funcstack[1] == _vexa-standin ]]; then
    _vexa-standin "$@"
else
    compdef _vexa-standin vexa-standin
fi
)";

// Returns `text` in single quotes, with a backslash before each character that zsh's functions treat specially.
std::string quoted(const std::string& text) { return '\'' + text + '\''; }

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == ':' || c == '[' || c == ']' || c == '\\') result += '\\';
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return result;
}

// Returns the candidates for a value: ":FILE:_files", ":RULE:(a b c)", ":N: "
std::string valueOf(const Option& option) {
    const std::string start = ':' + escaped(option.valueName) + ':';
    if (!option.words.empty()) return start + '(' + joined(option.words, " ") + ')';
    return start + (option.takesFiles() ? "_files" : " ");
}

// Returns an option in the form of _arguments: '(-j --jobs)'{-j,--jobs=}'[How many run]:N: '. The names in parentheses
// exclude the option: its own names, unless it may be given again.
std::string entryOf(const Option& option) {
    if (option.isArgument()) return quoted((option.isRepeatable() ? "*" : "1") + valueOf(option));
    const bool hasValue = !option.valueName.empty();
    const std::string rest = '[' + escaped(option.help) + ']' + (hasValue ? valueOf(option) : "");
    std::string entries;
    for (const std::string& name : option.names) {
        std::string entry = option.isRepeatable() ? "*" : '(' + joined(option.names, " ") + ')';
        entry += name;
        if (hasValue) entry += name.size() > 2 ? '=' : '+';
        entries += (entries.empty() ? "" : " ") + quoted(entry + rest);
    }
    return entries;
}

std::string entriesOf(const Command& command, const std::string& indent) {
    std::string entries;
    for (const Option& option : command.options) entries += indent + entryOf(option) + " \\\n";
    return entries;
}

std::string caseOf(const Command& command) {
    std::string entries = entriesOf(command, "                        ");
    entries.resize(entries.size() - 3);  // " \\\n"
    return "                " + command.name + ")\n                    _arguments \\\n" + entries + " ;;\n";
}

}  // namespace

std::string zshCompletion(const Command& program) {
    std::string commands;
    std::string cases;
    for (const Command* command : shownCommands(program)) {
        commands += "        " + quoted(command->name + ':' + escaped(command->summary)) + '\n';
        cases += caseOf(*command);
    }
    std::string script = kScript;
    fillIn(script, "COMMANDS", commands);
    fillIn(script, "OPTIONS", entriesOf(program, "        "));
    fillIn(script, "CASES", cases);
    return script;
}

}  // namespace vexa::runner
