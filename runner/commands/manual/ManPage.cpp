#include "commands/manual/Forms.h"

#include "terminal/Console.h"

namespace vexa::runner {
namespace {

// Escapes text for roff: a line must not look like a request, and a minus sign must stay a minus sign when it is
// copied.
std::string escaped(const std::string& text) {
    std::string roff;
    bool isLineStart = true;
    for (const char c : text) {
        if (isLineStart && (c == '.' || c == '\'')) roff += "\\&";
        if (c == '\\') {
            roff += "\\e";
        } else if (c == '-') {
            roff += "\\-";
        } else {
            roff += c;
        }
        isLineStart = c == '\n';
    }
    return roff;
}

std::string bold(const std::string& text) { return "\\fB" + escaped(text) + "\\fR"; }
std::string italic(const std::string& text) { return "\\fI" + escaped(text) + "\\fR"; }
std::string quoted(const std::string& text) { return '"' + escaped(text) + '"'; }

// Returns text whose layout roff must not change.
std::string asWritten(const std::string& text) { return text.empty() ? "" : ".PP\n.EX\n" + escaped(text) + "\n.EE\n"; }

std::string usageOf(const Command& command) {
    std::string usage = bold(std::string(kProgramName) + ' ' + command.name);
    for (const Option* option : argumentsOf(command)) {
        const std::string value = italic(option->valueName) + (option->isRepeatable() ? " ..." : "");
        usage += ' ' + (option->isRequired ? value : '[' + value + ']');
    }
    return usage + " [" + italic("option") + " ...]";
}

std::string labelOf(const Option& option) {
    if (option.isArgument()) return italic(option.valueName);
    std::string label;
    for (const std::string& name : option.names) label += (label.empty() ? "" : ", ") + bold(name);
    return label + (option.valueName.empty() ? "" : ' ' + italic(option.valueName));
}

std::string entryOf(const Option& option) {
    const bool isToBeSaid = option.isRequired && !option.isArgument();
    return ".TP\n" + labelOf(option) + '\n' + escaped(option.help) + (isToBeSaid ? " (required)" : "") + '\n';
}

std::string entriesOf(const Command& command) {
    std::string entries;
    for (const Option* option : argumentsOf(command)) entries += entryOf(*option);
    for (const Option* option : namedOptionsOf(command)) entries += entryOf(*option);
    return entries;
}

}  // namespace

std::string manPage(const Command& program) {
    std::string page = ".\\\" Generated from the command line of the program.\n.TH VEXA\\-STANDIN 1 \"\" " +
                       quoted(std::string(kProgramName) + ' ' + VEXA_STANDIN_VERSION) + " \"User Commands\"\n";
    page += ".SH NAME\n" + escaped(kProgramName) + " \\- a stand\\-in host that runs and tests add\\-ons\n";
    page += ".SH SYNOPSIS\n";
    for (const Command* command : shownCommands(program)) page += usageOf(*command) + "\n.br\n";
    page += ".SH DESCRIPTION\n" + escaped(program.summary) + '\n';
    page += ".SH OPTIONS\n" + entriesOf(program);
    page += ".SH COMMANDS\n";
    for (const Command* command : shownCommands(program)) {
        page += ".SS " + escaped(command->name) + '\n' + escaped(command->summary) + ".\n.PP\n" + usageOf(*command) +
                '\n' + entriesOf(*command) + asWritten(command->footer);
    }
    return page + ".SH SEE ALSO\n" + escaped("bash(1), ctest(1)") + '\n';
}

}  // namespace vexa::runner
