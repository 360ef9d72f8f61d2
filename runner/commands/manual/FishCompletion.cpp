#include "commands/manual/Forms.h"
#include "text/StartsWith.h"

namespace vexa::runner {
namespace {

// In the script, COMMANDS stands for the names of the commands.
constexpr const char* kScript = R"(# fish completion of vexa-standin. Generated from its command line.

# Whether the command that was typed is the first argument; without one, whether none was typed yet.
function __vexa_standin_is
    set -l words (commandline -opc)
    for word in $words[2..-1]
        if contains -- $word COMMANDS
            test "$word" = "$argv[1]"
            return
        end
    end
    test -z "$argv[1]"
end

complete -c vexa-standin -f
)";

// Returns `text` in single quotes.
std::string quoted(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '\'' || c == '\\') result += '\\';
        result += c;
    }
    return '\'' + result + '\'';
}

// Returns the candidates for a value: files, words or nothing.
std::string valueOf(const Option& option) {
    if (option.takesFiles()) return " -F";
    return option.words.empty() ? "" : " -a " + quoted(joined(option.words, " "));
}

std::string lineOf(const Option& option, const std::string& start) {
    if (option.isArgument()) return valueOf(option).empty() ? "" : start + valueOf(option) + '\n';
    std::string names;
    for (const std::string& name : option.names) {
        const bool isLong = startsWith(name, "--");
        names += isLong ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    const bool hasValue = !option.valueName.empty();
    const std::string value = hasValue ? (option.takesFiles() ? " -r" : " -x") + valueOf(option) : "";
    return start + names + value + " -d " + quoted(option.help) + '\n';
}

std::string linesOf(const Command& command, const std::string& name) {
    const std::string start = "complete -c vexa-standin -n " + quoted("__vexa_standin_is " + name);
    std::string lines = "\n";
    for (const Option& option : command.options) lines += lineOf(option, start);
    for (const Command* shown : shownCommands(command)) {
        lines += start + " -a " + shown->name + " -d " + quoted(shown->summary) + '\n';
    }
    return lines;
}

}  // namespace

std::string fishCompletion(const Command& program) {
    std::string script = kScript;
    fillIn(script, "COMMANDS", joined(shownNames(program), " "));
    script += linesOf(program, "");
    for (const Command* command : shownCommands(program)) script += linesOf(*command, command->name);
    return script;
}

}  // namespace vexa::runner
