#include "commands/manual/ManPage.h"

#include <CLI/CLI.hpp>
#include <sstream>

#include "options/CommandTree.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

// As roff takes it: a line must not begin as a request does, and a minus sign is to be copied as one.
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

// Text laid out already: it stays so.
std::string asWritten(const std::string& text) { return text.empty() ? "" : ".PP\n.EX\n" + escaped(text) + "\n.EE\n"; }

std::string usageOf(const CLI::App& command) {
    std::string usage = bold(std::string(kProgramName) + ' ' + command.get_name());
    for (const CLI::Option* option : positionals(command)) {
        const std::string value = italic(valueNameOf(*option)) + (option->get_expected_max() > 1 ? " ..." : "");
        usage += ' ' + (option->get_required() ? value : '[' + value + ']');
    }
    return usage + " [" + italic("option") + " ...]";
}

std::string labelOf(const CLI::Option& option) {
    const std::string value = valueNameOf(option);
    if (option.get_positional()) return italic(value);
    std::string label;
    for (const std::string& name : namesOf(option)) label += (label.empty() ? "" : ", ") + bold(name);
    return label + (value.empty() ? "" : ' ' + italic(value));
}

std::string entryOf(const CLI::Option& option) {
    const bool isToBeSaid = option.get_required() && !option.get_positional();
    return ".TP\n" + labelOf(option) + '\n' + escaped(option.get_description()) + (isToBeSaid ? " (required)" : "") +
           '\n';
}

std::string entriesOf(const CLI::App& command) {
    std::string entries;
    for (const CLI::Option* option : positionals(command)) entries += entryOf(*option);
    for (const CLI::Option* option : namedOptions(command)) entries += entryOf(*option);
    return entries;
}

}  // namespace

std::string manPage(const CLI::App& app) {
    std::string page = ".\\\" Generated from the command line of the program.\n.TH VEXA\\-STANDIN 1 \"\" " +
                       quoted(std::string(kProgramName) + ' ' + VEXA_STANDIN_VERSION) + " \"User Commands\"\n";
    page += ".SH NAME\n" + escaped(kProgramName) + " \\- a stand\\-in host that runs and tests add\\-ons\n";
    page += ".SH SYNOPSIS\n";
    for (const CLI::App* command : shownCommands(app)) page += usageOf(*command) + "\n.br\n";
    page += ".SH DESCRIPTION\n" + escaped(app.get_description()) + '\n';
    page += ".SH OPTIONS\n" + entriesOf(app);
    page += ".SH COMMANDS\n";
    for (const CLI::App* command : shownCommands(app)) {
        page += ".SS " + escaped(command->get_name()) + '\n' + escaped(command->get_description()) + ".\n.PP\n" +
                usageOf(*command) + '\n' + entriesOf(*command) + asWritten(command->get_footer());
    }
    return page + ".SH SEE ALSO\n" + escaped("bash(1), ctest(1)") + '\n';
}

}  // namespace vexa::runner
