#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "formats/JunitText.h"
#include "formats/ResultsReader.h"
#include "options/ExitStatus.h"

namespace vexa::runner {

/// The results of many macro files, from any number of results files. It keeps one entry for each macro file.
///
///     ResultsSummary summary;
///     summary.expect(readMacroList("macros.txt"));   // optional, before the first result
///     summary.add(result, "1.jsonl");                // each result
///     print(summary.text());
class ResultsSummary {
public:
    /// Sets the list: each of its macro files must have one result, or as many as it is in the list.
    void expect(const std::vector<std::string>& macroFiles);

    /// Adds a result from \p resultsFile.
    void add(const MacroResult& result, const std::string& resultsFile);

    /// Returns the summary: three lines of counts, and a line for each problem of a macro file. The macro files have
    /// the order of the list, and without a list the order of their first results.
    std::string text() const;

    /// Returns the status that one run of all macro files would have: the highest one. With a list, a macro file with
    /// too few or too many results counts as ExitStatus_e::BadUsageOrInput. Without a list, a macro file does so if its
    /// only result has no end line.
    ExitStatus_e status() const;

    /// Returns a test case for each result, and for each macro file without one.
    std::vector<JunitCase> cases() const;

private:
    struct Result {
        int exitStatus;
        double seconds;
        std::string error;
        std::string failures;
    };
    struct Macro {
        std::string name;
        std::size_t listed = 0;
        bool isCutOff = false;  // a results file ends within its results
        std::vector<Result> results;
    };

    Macro& macroOf(const std::string& name);
    std::string whyIncomplete(const Macro& macro) const;

    bool m_hasList = false;
    std::vector<Macro> m_macros;
    std::unordered_map<std::string, std::size_t> m_indices;  // of m_macros, by name
    std::vector<std::string> m_cutOff;                       // results files that end within an unknown macro file
    std::size_t m_commands = 0;
    double m_seconds = 0;
};

}  // namespace vexa::runner
