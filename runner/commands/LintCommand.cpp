#include <algorithm>
#include <cstddef>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "commands/Commands.h"
#include "formats/DescriptionFile.h"
#include "language/LineCheck.h"
#include "options/CommonOptions.h"
#include "options/UsageError.h"
#include "session/ProblemOutputs.h"
#include "system/files/OutputTarget.h"
#include "system/files/RunFiles.h"
#include "system/files/StandardStreams.h"
#include "system/files/WholeFile.h"
#include "system/files/WholeOutput.h"
#include "terminal/Console.h"
#include "text/Counted.h"
#include "text/Printable.h"

namespace vexa::runner {
namespace {

constexpr const char* kLintFooter = R"(The description of an add-on's commands, NAME.commands.json, says which commands
and options there are. No add-on is loaded: --addon names one only to find the
description beside it, and the add-on itself need not exist.

Each mistake is one line: FILE:LINE:COLUMN: error: message [rule]. As an output
file, - means the standard output.

Example:
  vexa-standin lint macros/*.macro --addon ./libstats.so

Exit status:
  0  no mistakes
  1  there are mistakes
  2  wrong usage or input; a file could not be read or written)";

struct LintOptions {
    std::vector<std::string> macros;
    std::vector<std::string> addOns;
    std::vector<std::string> descriptions;
    std::optional<std::string> json;
    ProblemOptions problems;
    bool warningsAsErrors = false;
};

std::size_t charactersIn(std::string_view text) {
    const auto count = std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; });
    return static_cast<std::size_t>(count);
}

class Lint {
public:
    explicit Lint(const LintOptions& options) : m_options(options) {
        m_report.command = "lint";
        m_report.rules = languageRules();
    }

    ExitStatus_e execute() {
        ProblemOutputs outputs = openOutputs();
        if (!readDescriptions()) return ExitStatus_e::BadUsageOrInput;
        bool isReadable = true;
        for (const std::string& macro : m_options.macros) isReadable &= check(macro);
        const ExitStatus_e status = isReadable ? verdict() : ExitStatus_e::BadUsageOrInput;
        conclude(outputs, status);
        return status;
    }

private:
    ProblemOutputs openOutputs() {
        RunFiles files;
        files.read(m_options.macros);
        files.read(m_options.descriptions);
        files.write(m_options.json);
        noteOutputs(m_options.problems, files);
        if (m_options.json) m_json.emplace(*m_options.json);
        return ProblemOutputs(m_options.problems);
    }

    bool readDescriptions() {
        std::vector<std::string> files = m_options.descriptions;
        for (const std::string& addOn : m_options.addOns) files.push_back(descriptionBeside(addOn));
        bool areReadable = true;
        for (const std::string& file : files) {
            auto description = readDescription(file);
            areReadable &= description.has_value();
            if (description) m_descriptions.add(std::move(*description));
        }
        return areReadable;
    }

    bool check(const std::string& macro) {
        const std::string name = isStandardInput(macro) ? "<stdin>" : macro;
        try {
            const std::string text = readInput(macro);
            takeAll(name, text);
            return true;
        } catch (const std::system_error& error) {
            tell(name, "cannot be read: " + error.code().message());
            return false;
        }
    }

    void takeAll(const std::string& file, std::string_view text) {
        std::size_t number = 1;  // of the first line in `text`
        for (const Diagnostic& diagnostic : checkText(text, m_descriptions)) {
            for (; number != diagnostic.line; ++number) text.remove_prefix(text.find('\n') + 1);
            take(file, text.substr(0, text.find('\n')), diagnostic);
        }
    }

    void take(const std::string& file, std::string_view line, const Diagnostic& diagnostic) {
        const Span span = diagnostic.span;
        const std::size_t column = charactersIn(line.substr(0, span.begin)) + 1;
        const std::string_view marked = line.substr(span.begin, span.end - span.begin);
        const std::string message = printableLine(diagnostic.message);
        runner::print(printableLine(file) + ':' + std::to_string(diagnostic.line) + ':' + std::to_string(column) +
                      ": " + nameOf(diagnostic.severity) + ": " + message + " [" + diagnostic.rule + "]\n");
        Problem problem;
        problem.rule = diagnostic.rule;
        problem.severity = diagnostic.severity;
        problem.message = message;
        problem.place = {file, diagnostic.line, printableLine(marked), column};
        m_lines += nlohmann::ordered_json{{"file", file},
                                          {"line", diagnostic.line},
                                          {"column", column},
                                          {"endColumn", column + charactersIn(marked)},
                                          {"severity", nameOf(diagnostic.severity)},
                                          {"rule", diagnostic.rule},
                                          {"message", message}}
                       .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) +
                   '\n';
        m_report.problems.push_back(std::move(problem));
    }

    std::size_t countOf(standin::Severity_e severity) const {
        const auto& all = m_report.problems;
        return static_cast<std::size_t>(std::count_if(
            all.begin(), all.end(), [&](const Problem& problem) { return problem.severity == severity; }));
    }

    ExitStatus_e verdict() const {
        const bool areMistakes =
            m_options.warningsAsErrors ? !m_report.problems.empty() : countOf(standin::Severity_e::Error) > 0;
        return areMistakes ? ExitStatus_e::CommandFailed : ExitStatus_e::AllWell;
    }

    void conclude(ProblemOutputs& outputs, ExitStatus_e status) {
        if (!m_report.problems.empty()) {
            tell(counted(countOf(standin::Severity_e::Error), "error") + ", " +
                 counted(countOf(standin::Severity_e::Warning), "warning"));
        }
        if (m_json) m_json->replace(m_lines);
        m_report.exitStatus = static_cast<int>(status);
        m_report.hasRun = status != ExitStatus_e::BadUsageOrInput;
        outputs.write(m_report);
    }

    const LintOptions& m_options;
    Descriptions m_descriptions;
    std::optional<WholeOutput> m_json;
    std::string m_lines;  // for m_json
    ProblemReport m_report;
};

}  // namespace

Command lintCommand() {
    const auto options = std::make_shared<LintOptions>();
    Command command{"lint", "Find mistakes in macro files, without loading an add-on", kLintFooter};
    command.add(argument("MACROFILE", "The macro files; - reads the standard input", &options->macros).require());
    command.add(option({"--addon"}, "FILE", "An add-on; the description beside it is read", &options->addOns)
                    .check(whyNoStream));
    command.add(option({"--describe"}, "FILE", "A description of an add-on's commands", &options->descriptions));
    command.add(option({"--json"}, "FILE", "Write the mistakes as JSON, one line per mistake", &options->json));
    addProblemOptions(command, options->problems);
    command.add(flag({"--warnings-as-errors"}, "Also fail if there are only warnings", &options->warningsAsErrors));
    command.check = [options] {
        if (options->addOns.empty() && options->descriptions.empty()) {
            throw UsageError("--describe or --addon is required");
        }
        std::vector<std::string> inputs = options->macros;
        inputs.insert(inputs.end(), options->descriptions.begin(), options->descriptions.end());
        refuseSecondStandardInput(inputs);
    };
    command.run = [options] { return Lint(*options).execute(); };
    return command;
}

}  // namespace vexa::runner
