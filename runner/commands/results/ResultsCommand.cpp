#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "commands/Commands.h"
#include "commands/results/ResultsSummary.h"
#include "coverage/CoverageFile.h"
#include "formats/MacroList.h"
#include "formats/ResultsReader.h"
#include "options/CommonOptions.h"
#include "options/UsageError.h"
#include "system/files/InputLines.h"
#include "system/files/RunFiles.h"
#include "system/files/StandardStreams.h"
#include "system/files/WholeOutput.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

constexpr const char* kResultsFooter =
    R"(The input is results files of 'run --json', and coverage files of 'run --coverage'.
Results may come from several runs, for example from one run for each shard.

The summary counts the results, and names the macro files that failed. With
--list, it also names the macro files of the list that have no result, or more
results than the list has entries, and results of other macro files. Use it to
see that nothing was lost and nothing was run twice. Without --list, it names the
macro files whose run was cut off.

Examples:
  vexa-standin results results/*.jsonl --list macros.txt --junit results.xml
  vexa-standin results results/*.jsonl coverage/*.json --coverage all.json

The exit status is the highest status of all macro files, as for one run of all:
  0    all went well
  1    a command failed
  2    wrong usage or input; a file could not be read or written; a macro file
       has no result, or not the results that --list expects
  3, 4, 5, 130
       as for 'run')";

struct ResultsOptions {
    std::vector<std::string> inputs;
    std::optional<std::string> list;
    std::optional<std::string> junit;
    std::optional<std::string> json;
    std::optional<std::string> coverage;
};

// Merges the inputs, one after the other.
class Merger {
public:
    explicit Merger(const ResultsOptions& options) {
        if (options.list) m_summary.expect(readMacroList(*options.list));
        if (options.json) m_merged.emplace(*options.json);
    }

    void add(const std::string& input) {
        const std::string name = isStandardInput(input) ? kStandardInputName : input;
        try {
            InputLines lines(input);
            addContent(lines, name);
        } catch (const std::system_error& error) {
            throw ResultsError(name + ": cannot be read: " + error.code().message());
        }
    }

    const ResultsSummary& summary() const { return m_summary; }
    const std::optional<Coverage>& coverage() const { return m_coverage; }
    void finish() {
        if (m_merged) m_merged->finish();
    }

private:
    // A coverage file is one JSON object on many lines. Each line of a results file is a JSON object.
    void addContent(InputLines& lines, const std::string& name) {
        if (lines.peek(2) != "{\n") return addResults(lines, name);
        if (!m_coverage) m_coverage.emplace();
        merge(*m_coverage, coverageIn(lines.rest(), name));
    }

    void addResults(InputLines& lines, const std::string& name) {
        ResultsReader results(lines, name);
        while (const auto result = results.next()) {
            m_summary.add(*result, name);
            if (m_merged && result->exitStatus) m_merged->append(result->lines);
        }
    }

    ResultsSummary m_summary;
    std::optional<WholeOutput> m_merged;
    std::optional<Coverage> m_coverage;
};

void checkFiles(const ResultsOptions& options) {
    RunFiles files;
    files.read(options.inputs);
    files.read(options.list);
    for (const auto& output : {options.junit, options.json, options.coverage}) files.write(output);
    if (options.coverage) checkCoverageFile(*options.coverage);
}

std::string coverageLine(const Coverage& coverage) {
    const Share total = figuresOf(coverage).total();
    return "coverage of the contract: " + std::to_string(total.seen) + " of " + std::to_string(total.all) + '\n';
}

void writeCoverage(const ResultsOptions& options, const std::optional<Coverage>& coverage) {
    if (options.coverage && !coverage) throw CoverageError("--coverage: no input is a coverage file");
    if (!coverage) return;
    if (options.coverage) addToCoverageFile(*options.coverage, *coverage);
    print(coverageLine(*coverage));
}

ExitStatus_e showResults(const ResultsOptions& options) {
    checkFiles(options);
    std::optional<WholeOutput> junit;
    if (options.junit) junit.emplace(*options.junit);
    Merger merger(options);
    for (const std::string& input : options.inputs) merger.add(input);
    merger.finish();
    if (junit) junit->replace(junitText(kProgramName, {}, merger.summary().cases()));
    print(merger.summary().text());
    writeCoverage(options, merger.coverage());
    return merger.summary().status();
}

ExitStatus_e results(const ResultsOptions& options) {
    try {
        return showResults(options);
    } catch (const MacroListError& error) {
        tell(error.what());
    } catch (const ResultsError& error) {
        tell(error.what());
    } catch (const CoverageError& error) {
        tell(error.what());
    }
    return ExitStatus_e::BadUsageOrInput;
}

}  // namespace

Command resultsCommand() {
    const auto options = std::make_shared<ResultsOptions>();
    Command command{"results", "Merge the results of many runs", kResultsFooter};
    command.add(
        argument("FILE", "Results files and coverage files; - reads the standard input", &options->inputs).require());
    command.add(option({"--list"}, "FILE", "The list of macro files that should have results", &options->list));
    command.add(option({"--junit"}, "FILE", "Write a JUnit XML report", &options->junit));
    command.add(option({"--json"}, "FILE", "Write the results into one file, without those of runs that were cut off",
                       &options->json));
    command.add(
        option({"--coverage"}, "FILE", "Add the merged coverage to this file", &options->coverage).check(whyNoStream));
    command.check = [options] {
        std::vector<std::string> inputs = options->inputs;
        inputs.push_back(options->list.value_or(""));
        refuseSecondStandardInput(inputs);
    };
    command.run = [options] { return results(*options); };
    return command;
}

}  // namespace vexa::runner
