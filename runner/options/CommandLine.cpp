#include "options/CommandLine.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>

#include "options/HelpText.h"
#include "options/Refusals.h"
#include "options/UsageError.h"
#include "terminal/Terminal.h"
#include "text/Joined.h"
#include "text/NearNames.h"

namespace vexa::runner {
namespace {

Action show(std::FILE* stream, const std::string& text, ExitStatus_e status) {
    return [stream, text, status] {
        std::fputs(text.c_str(), stream);
        return status;
    };
}

// Adds an option to the parser. The type of its destination selects the call.
struct OptionAdder {
    CLI::App& app;
    std::string names;

    CLI::Option* operator()(ShowHelp) const { return app.set_help_flag(names); }
    CLI::Option* operator()(const ShowVersion& version) const { return app.set_version_flag(names, version.text); }
    CLI::Option* operator()(const Act& act) const { return app.add_flag_callback(names, act); }
    CLI::Option* operator()(bool* isGiven) const { return app.add_flag(names, *isGiven); }
    CLI::Option* operator()(const TakeText& take) const { return app.add_option_function<std::string>(names, take); }
    template <class Value>
    CLI::Option* operator()(Value* value) const {
        return app.add_option(names, *value);
    }
};

// Refuses what \p test refuses, and says what is expected and what was found.
CLI::Validator said(const CLI::Validator& test, const std::string& expected) {
    const auto whyNot = [test, expected](const std::string& value) {
        return test(value).empty() ? "" : "expected " + expected + ", but found " + value;
    };
    return {whyNot, ""};
}

std::string numbersIn(const Range& range) {
    return "a number from " + std::to_string(range.least) + " to " + std::to_string(range.most);
}

void addOption(CLI::App& app, const Option& option) {
    const std::string names = option.isArgument() ? option.valueName : joined(option.names, ",");
    CLI::Option& parsed = *std::visit(OptionAdder{app, names}, option.destination);
    if (option.valueName.empty()) return;
    parsed.type_name(option.isArgument() ? "" : option.valueName)->required(option.isRequired);
    // One value per option, so that the parser does not use a following argument as a second value.
    if (!option.isArgument()) parsed.allow_extra_args(false);
    if (option.whyNot) parsed.check(CLI::Validator(option.whyNot, ""));
    if (option.range) parsed.check(said(CLI::Range(option.range->least, option.range->most), numbersIn(*option.range)));
    if (option.areOthersRefused) parsed.check(said(CLI::IsMember(option.words), alternatives(option.words)));
}

void addOptions(CLI::App& app, const Command& command) {
    for (const Option& option : command.options) addOption(app, option);
    for (const Option& option : command.options) {
        if (!option.excluded.empty()) app.get_option(option.label())->excludes(app.get_option(option.excluded));
    }
}

std::vector<GivenOption> givenTo(const CLI::App& app, const Command& command) {
    std::vector<GivenOption> given;
    for (const Option* option : namedOptionsOf(command)) {
        const CLI::Option& parsed = *app.get_option(option->label());
        if (parsed.count() == 0) continue;
        const bool isFlag = option->valueName.empty();
        given.emplace_back(option->label(), isFlag ? std::vector<std::string>() : parsed.results());
    }
    return given;
}

// The program, with its commands and options added to the parser.
class Parser {
public:
    explicit Parser(const Command& program) : m_program(program), m_app(program.summary, program.name) {
        m_app.require_subcommand(0, 1);
        addOptions(m_app, program);
        for (const Command& command : program.commands) addOptions(*m_app.add_subcommand(command.name), command);
    }

    Action parse(std::vector<std::string> words) {
        try {
            std::reverse(words.begin(), words.end());  // the parser expects the words in reverse order
            m_app.parse(std::move(words));
            return isCommandChosen() ? checked(chosen()) : show(stderr, help(), ExitStatus_e::BadUsageOrInput);
        } catch (const CLI::CallForHelp&) {
            return show(stdout, help(), ExitStatus_e::AllWell);
        } catch (const CLI::CallForVersion& version) {
            return show(stdout, version.what() + std::string("\n"), ExitStatus_e::AllWell);
        } catch (const CLI::ParseError& error) {
            const std::vector<std::string> unexpected = m_app.remaining(true);
            const bool isUnexpected = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
            UsageError refusal(isUnexpected ? unexpectedWords(unexpected, chosen()) : inPlainWords(error.what()));
            refusal.call = call();
            refusal.suggestions = corrections(unexpected, chosen());
            throw UsageError(refusal);
        } catch (UsageError& refusal) {
            refusal.call = call();
            throw;
        }
    }

private:
    // Returns the command that the user gave; without a command, the program.
    const Command& chosen() const {
        const auto isChosen = [this](const Command& command) { return m_app.got_subcommand(command.name); };
        const auto found = std::find_if(m_program.commands.begin(), m_program.commands.end(), isChosen);
        return found == m_program.commands.end() ? m_program : *found;
    }

    bool isCommandChosen() const { return &chosen() != &m_program; }
    std::string call() const { return m_program.name + (isCommandChosen() ? ' ' + chosen().name : ""); }
    std::string help() const { return helpText(chosen(), call(), textColumnsOf(STDOUT_FILENO)); }

    Action checked(const Command& command) const {
        if (command.given != nullptr) *command.given = givenTo(*m_app.get_subcommand(command.name), command);
        if (command.check) command.check();
        return command.run;
    }

    const Command& m_program;
    CLI::App m_app;
};

}  // namespace

Action parse(const Command& program, const std::vector<std::string>& arguments) {
    return Parser(program).parse(arguments);
}

}  // namespace vexa::runner
