// Continues runs that were cut off. The first line of an input lists the macro files; the rest are the results so far.
// A simple loop must find the same results done. What is kept must be continued to the same state, and a run that was
// cut off earlier must have kept less. A refusal must be one line.

#include <algorithm>
#include <nlohmann/json.hpp>
#include <vector>

#include "Fuzz.h"
#include "commands/run/Resume.h"
#include "formats/ResultsReader.h"

namespace vexa::fuzz {
namespace {

using runner::CutOffRun;

constexpr const char* kName = "results";
constexpr int kStoppedByUser = 130;

struct Continued {
    CutOffRun run;
    std::string kept;
};

Continued continued(const std::string& results, const std::vector<std::string>& macroFiles) {
    runner::InputLines lines = runner::InputLines::ofText(results);
    Continued all;
    all.run = runner::takeUp(lines, kName, macroFiles, [&](const std::string& text) { all.kept += text; });
    return all;
}

// Returns what stands between the separators; nothing for an empty text.
std::vector<std::string> partsOf(const std::string& text, char separator) {
    std::vector<std::string> parts;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find(separator, at), text.size());
        parts.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return parts;
}

// Counts the end lines that a run wrote which was not stopped.
std::size_t plainlyDone(const std::string& results) {
    std::size_t done = 0;
    for (const std::string& line : partsOf(results, '\n')) {
        const auto end = nlohmann::json::parse(line, nullptr, false);
        if (!end.is_object() || !end.contains("exitStatus") || !end["exitStatus"].is_number_integer()) continue;
        if (end["exitStatus"] != kStoppedByUser) ++done;
    }
    return done;
}

void requireSame(const Continued& a, const Continued& b) {
    require(a.kept == b.kept, "what is kept stays", a.kept);
    require(a.run.left == b.run.left && a.run.done == b.run.done && a.run.failed == b.run.failed,
            "what is kept is continued to the same state", a.kept);
}

void requireComplete(const Continued& all, const std::vector<std::string>& macroFiles) {
    require(all.run.done + all.run.left.size() == macroFiles.size(), "each macro file is done or left");
    require(all.run.failed.size() <= all.run.done, "only what is done has failed");
    auto listed = macroFiles.begin();
    for (const std::string& left : all.run.left) {
        listed = std::find(listed, macroFiles.end(), left);
        require(listed != macroFiles.end(), "what is left is listed, in its order", left);
        ++listed;
    }
}

// A run that is killed after a line has the results up to there.
void requireLessBefore(const Continued& all, const std::string& results, const std::vector<std::string>& macroFiles) {
    for (std::size_t end = results.find('\n'); end != std::string::npos; end = results.find('\n', end + 1)) {
        const Continued before = continued(results.substr(0, end + 1), macroFiles);
        require(all.kept.compare(0, before.kept.size(), before.kept) == 0, "an earlier run has kept less", all.kept);
    }
}

void tryResults(const std::string& results, const std::vector<std::string>& macroFiles) {
    const Continued all = continued(results, macroFiles);
    require(all.run.done == plainlyDone(results), "what has an end line is done", results);
    requireComplete(all, macroFiles);
    requireSame(all, continued(all.kept, macroFiles));
    requireLessBefore(all, results, macroFiles);
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    const std::string input = textOf(data, size);
    const std::size_t listEnd = std::min(input.find('\n'), input.size());
    const std::string results = input.substr(std::min(listEnd + 1, input.size()));
    try {
        tryResults(results, partsOf(input.substr(0, listEnd), ' '));
    } catch (const vexa::runner::ResultsError& error) {
        const std::string refusal = error.what();
        require(refusal.compare(0, 8, "results:") == 0, "a refusal begins with the file", refusal);
    }
    return 0;
}
