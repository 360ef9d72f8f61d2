#include "options/CommandLine.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>

#include "options/Corrections.h"
#include "options/HelpText.h"
#include "options/UsageError.h"
#include "terminal/Terminal.h"

namespace vexa::runner {
namespace {

Action show(std::FILE* stream, const std::string& text, ExitStatus_e status) {
    return [stream, text, status] {
        std::fputs(text.c_str(), stream);
        return status;
    };
}

std::string joinedNames(const Option& option) {
    if (option.isArgument()) return option.valueName;
    std::string names;
    for (const std::string& name : option.names) names += (names.empty() ? "" : ",") + name;
    return names;
}

// Adds an option to the parser, by the kind of its destination.
class OptionAdder {
public:
    OptionAdder(CLI::App& app, const Option& option) : m_app(app), m_names(joinedNames(option)), m_help(option.help) {}

    CLI::Option* operator()(ShowHelp) const { return m_app.set_help_flag(m_names, m_help); }
    CLI::Option* operator()(const ShowVersion& version) const {
        return m_app.set_version_flag(m_names, version.text, m_help);
    }
    CLI::Option* operator()(const SetSwitch& set) const {
        return m_app.add_flag_callback(m_names, [set] { *set.value = set.isOn; });
    }
    CLI::Option* operator()(bool* isGiven) const { return m_app.add_flag(m_names, *isGiven); }
    CLI::Option* operator()(const TakeText& take) const {
        return m_app.add_option_function<std::string>(m_names, take);
    }
    template <class Value>
    CLI::Option* operator()(Value* value) const {
        return m_app.add_option(m_names, *value);
    }

private:
    CLI::App& m_app;
    std::string m_names;
    std::string m_help;
};

// One command, as the parser knows it.
class ParsedCommand {
public:
    ParsedCommand(const Command& command, CLI::App& app) : m_command(command), m_app(app) {
        for (const Option& option : command.options) m_options.push_back(&added(option));
        for (std::size_t i = 0; i < m_options.size(); ++i) exclude(i);
    }

    const Command& command() const { return m_command; }
    bool isChosen() const { return m_app.parsed(); }

    std::vector<GivenOption> given() const {
        std::vector<GivenOption> given;
        for (std::size_t i = 0; i < m_options.size(); ++i) {
            const Option& option = m_command.options[i];
            if (m_options[i]->count() == 0 || option.isArgument()) continue;
            const bool isFlag = option.valueName.empty();
            given.emplace_back(option.label(), isFlag ? std::vector<std::string>() : m_options[i]->results());
        }
        return given;
    }

private:
    CLI::Option& added(const Option& option) const {
        CLI::Option& parsed = *std::visit(OptionAdder(m_app, option), option.destination);
        if (option.valueName.empty()) return parsed;
        parsed.type_name(option.isArgument() ? "" : option.valueName)->required(option.isRequired);
        // One value per option, so that an argument after it is not taken for a second one.
        if (!option.isArgument()) parsed.allow_extra_args(false);
        if (option.whyNot) parsed.check(CLI::Validator(option.whyNot, ""));
        if (option.range) parsed.check(CLI::Range(option.range->least, option.range->most).description(""));
        if (option.areOthersRefused) parsed.check(CLI::IsMember(option.words).description(""));
        return parsed;
    }

    void exclude(std::size_t i) const {
        const std::string& excluded = m_command.options[i].excluded;
        if (!excluded.empty()) m_options[i]->excludes(m_app.get_option(excluded));
    }

    const Command& m_command;
    CLI::App& m_app;
    std::vector<CLI::Option*> m_options;
};

// The program as the parser knows it.
class Parser {
public:
    explicit Parser(const Command& program) : m_program(program), m_app(program.summary, program.name) {
        m_app.require_subcommand(0, 1);
        const ParsedCommand ownOptions(program, m_app);
        for (const Command& command : program.commands) {
            m_commands.emplace_back(command, *m_app.add_subcommand(command.name, command.summary));
        }
    }

    Action parse(std::vector<std::string> words) {
        try {
            std::reverse(words.begin(), words.end());  // as the parser wants them
            m_app.parse(std::move(words));
            return chosen() == nullptr ? show(stderr, help(), ExitStatus_e::BadUsageOrInput) : checked(*chosen());
        } catch (const CLI::CallForHelp&) {
            return show(stdout, help(), ExitStatus_e::AllWell);
        } catch (const CLI::CallForVersion& version) {
            return show(stdout, version.what() + std::string("\n"), ExitStatus_e::AllWell);
        } catch (const CLI::ParseError& error) {
            const std::vector<std::string> unexpected = m_app.remaining(true);
            const bool isUnexpected = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
            throw UsageError(isUnexpected ? unexpectedWords(unexpected) : error.what(), call(),
                             corrections(unexpected, commandInQuestion()));
        } catch (const UsageError& error) {
            throw UsageError(error.what(), call(), error.suggestions());
        }
    }

private:
    const ParsedCommand* chosen() const {
        const auto isChosen = [](const ParsedCommand& command) { return command.isChosen(); };
        const auto found = std::find_if(m_commands.begin(), m_commands.end(), isChosen);
        return found == m_commands.end() ? nullptr : &*found;
    }

    const Command& commandInQuestion() const { return chosen() == nullptr ? m_program : chosen()->command(); }
    std::string call() const { return m_program.name + (chosen() == nullptr ? "" : ' ' + chosen()->command().name); }
    std::string help() const { return helpText(commandInQuestion(), call(), textColumnsOf(STDOUT_FILENO)); }

    static Action checked(const ParsedCommand& parsed) {
        const Command& command = parsed.command();
        if (command.given != nullptr) *command.given = parsed.given();
        if (command.check) command.check();
        return command.run;
    }

    const Command& m_program;
    CLI::App m_app;
    std::vector<ParsedCommand> m_commands;
};

}  // namespace

Action parse(const Command& program, const std::vector<std::string>& arguments) {
    return Parser(program).parse(arguments);
}

}  // namespace vexa::runner
