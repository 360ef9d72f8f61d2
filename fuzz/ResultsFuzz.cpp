// Reads results files. The results must have the bytes of the file, up to where it was cut off. Without the results
// that were cut off, the file must be read again to the same results. A refusal must name a line of the file.

#include <algorithm>
#include <vector>

#include "Fuzz.h"
#include "formats/ResultsReader.h"

namespace vexa::fuzz {
namespace {

using runner::MacroResult;

constexpr const char* kName = "results";

std::vector<MacroResult> resultsIn(const std::string& text) {
    runner::InputLines lines = runner::InputLines::ofText(text);
    runner::ResultsReader reader(lines, kName);
    std::vector<MacroResult> results;
    while (auto result = reader.next()) results.push_back(std::move(*result));
    return results;
}

std::string linesOf(const std::vector<MacroResult>& results) {
    std::string lines;
    for (const MacroResult& result : results) lines += result.lines;
    return lines;
}

bool isSame(const MacroResult& a, const MacroResult& b) {
    return a.macroFile == b.macroFile && a.exitStatus == b.exitStatus && a.error == b.error && a.lines == b.lines &&
           a.commands == b.commands && a.failures == b.failures;
}

void requireReadAgain(std::vector<MacroResult> results) {
    if (!results.empty() && !results.back().exitStatus) results.pop_back();
    const auto isWhole = [](const MacroResult& result) { return result.exitStatus && !result.macroFile.empty(); };
    require(std::all_of(results.begin(), results.end(), isWhole), "only the last result may be cut off");
    const std::vector<MacroResult> again = resultsIn(linesOf(results));
    require(std::equal(results.begin(), results.end(), again.begin(), again.end(), isSame),
            "results are read again unchanged", linesOf(results));
}

void requireReason(const std::string& reason, const std::string& text) {
    const auto lines = std::count(text.begin(), text.end(), '\n') + 1;
    for (long line = 1; line <= lines; ++line) {
        if (reason == kName + (':' + std::to_string(line)) + ": this is not a line of 'run --json'") return;
    }
    require(false, "a refusal names a line", reason);
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    const std::string text = textOf(data, size);
    try {
        const std::vector<MacroResult> results = resultsIn(text);
        const std::string lines = linesOf(results);
        require((text + '\n').compare(0, lines.size(), lines) == 0, "the results have the bytes of the file", lines);
        requireReadAgain(results);
    } catch (const vexa::runner::ResultsError& error) {
        requireReason(error.what(), text);
    }
    return 0;
}
