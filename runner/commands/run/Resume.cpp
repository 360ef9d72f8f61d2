#include "commands/run/Resume.h"

#include <filesystem>
#include <system_error>
#include <unordered_map>

#include "formats/ResultsFile.h"
#include "formats/ResultsReader.h"
#include "system/files/WholeOutput.h"

namespace vexa::runner {
namespace {

// How often a macro file is in the list, and how many results it has.
struct Count {
    std::size_t listed = 0;
    std::size_t done = 0;
};

// By the name in the results.
using Counts = std::unordered_map<std::string, Count>;

Counts countsOf(const std::vector<std::string>& macroFiles) {
    Counts counts;
    for (const std::string& file : macroFiles) ++counts[nameInResults(file)].listed;
    return counts;
}

InputLines opened(const std::string& resultsFile) {
    try {
        return InputLines(resultsFile);
    } catch (const std::system_error& error) {
        throw ResultsError(resultsFile + ": cannot be read: " + error.code().message());
    }
}

bool isDone(const MacroResult& result) {
    return result.exitStatus && *result.exitStatus != static_cast<int>(ExitStatus_e::Stopped);
}

// Returns the macro files without results.
std::vector<std::string> leftOf(const std::vector<std::string>& macroFiles, Counts& counts) {
    std::vector<std::string> left;
    for (const std::string& file : macroFiles) {
        std::size_t& done = counts[nameInResults(file)].done;
        if (done == 0) {
            left.push_back(file);
        } else {
            --done;
        }
    }
    return left;
}

// Results of another list or shard would be mixed with those of this run.
void addResult(Counts& counts, const std::string& resultsFile, const std::string& macroFile) {
    const auto count = counts.find(macroFile);
    if (count == counts.end()) {
        throw ResultsError(resultsFile + ": it has results of " + macroFile + ", which this run does not include");
    }
    if (++count->second.done > count->second.listed) {
        throw ResultsError(resultsFile + ": it has more results of " + macroFile + " than this run includes");
    }
}

}  // namespace

CutOffRun takeUp(const std::string& resultsFile, const std::vector<std::string>& macroFiles) {
    if (!std::filesystem::exists(resultsFile)) return {macroFiles, 0, {}};
    InputLines results = opened(resultsFile);
    WholeOutput kept(resultsFile);
    CutOffRun run = takeUp(results, resultsFile, macroFiles, [&](const std::string& lines) { kept.append(lines); });
    kept.finish();
    return run;
}

CutOffRun takeUp(InputLines& results, const std::string& name, const std::vector<std::string>& macroFiles,
                 const std::function<void(const std::string& lines)>& keep) {
    CutOffRun run;
    Counts counts = countsOf(macroFiles);
    ResultsReader reader(results, name);
    while (const auto result = reader.next()) {
        if (!isDone(*result)) continue;
        addResult(counts, name, result->macroFile);
        keep(result->lines);
        ++run.done;
        const auto status = static_cast<ExitStatus_e>(*result->exitStatus);
        if (status != ExitStatus_e::AllWell) run.failed.emplace_back(result->macroFile, status);
    }
    run.left = leftOf(macroFiles, counts);
    return run;
}

}  // namespace vexa::runner
