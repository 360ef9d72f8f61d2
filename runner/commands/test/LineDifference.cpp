#include "commands/test/LineDifference.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace vexa::runner {
namespace {

using Lines = std::vector<std::string_view>;

constexpr std::size_t kContext = 3;
constexpr std::size_t kMostCompared = 4'000'000;  // pairs of lines: beyond, all in between counts as changed

struct Step {
    char mark;  // ' ' in both, '-' only before, '+' only now
    std::string_view line;
};

Lines linesOf(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        const std::size_t size = std::min(text.find('\n'), text.size() - 1) + 1;
        lines.push_back(text.substr(0, size));
        text.remove_prefix(size);
    }
    return lines;
}

// The steps from the lines `before` to those of `now`, by their longest common subsequence.
std::vector<Step> stepsBetween(const Lines& before, const Lines& now) {
    std::vector<Step> steps;
    const std::size_t rows = before.size();
    const std::size_t columns = now.size();
    const bool isCompared = rows == 0 || columns <= kMostCompared / rows;
    // common[i][j]: how much the lines from i and from j on have in common
    std::vector<std::vector<std::uint32_t>> common;
    if (isCompared) common.assign(rows + 1, std::vector<std::uint32_t>(columns + 1));
    for (std::size_t i = rows; isCompared && i-- > 0;) {
        for (std::size_t j = columns; j-- > 0;) {
            common[i][j] =
                before[i] == now[j] ? common[i + 1][j + 1] + 1 : std::max(common[i + 1][j], common[i][j + 1]);
        }
    }
    std::size_t i = 0;
    std::size_t j = 0;
    while (i != rows || j != columns) {
        const bool isBoth = isCompared && i != rows && j != columns && before[i] == now[j];
        const bool isGone =
            !isBoth && i != rows && (j == columns || !isCompared || common[i + 1][j] >= common[i][j + 1]);
        steps.push_back(isBoth ? Step{' ', before[i]} : isGone ? Step{'-', before[i]} : Step{'+', now[j]});
        if (isBoth || isGone) ++i;
        if (!isGone) ++j;
    }
    return steps;
}

// The equal lines at both ends need no comparison.
std::vector<Step> allSteps(Lines before, Lines now) {
    const auto begin = std::mismatch(before.begin(), before.end(), now.begin(), now.end());
    std::vector<Step> steps;
    for (auto line = before.begin(); line != begin.first; ++line) steps.push_back({' ', *line});
    const Lines rest(begin.first, before.end());
    const Lines restNow(begin.second, now.end());
    const auto end = std::mismatch(rest.rbegin(), rest.rend(), restNow.rbegin(), restNow.rend());
    const auto middle = stepsBetween({rest.begin(), end.first.base()}, {restNow.begin(), end.second.base()});
    steps.insert(steps.end(), middle.begin(), middle.end());
    for (auto line = end.first.base(); line != rest.end(); ++line) steps.push_back({' ', *line});
    return steps;
}

std::string shown(const Step& step) {
    std::string line = std::string(1, step.mark) + ' ' + std::string(step.line);
    if (line.back() != '\n') line += '\n';
    return line;
}

}  // namespace

std::string lineDifference(const std::string& before, const std::string& now) {
    const std::vector<Step> steps = allSteps(linesOf(before), linesOf(now));
    std::vector<bool> isShown(steps.size());
    for (std::size_t i = 0; i != steps.size(); ++i) {
        if (steps[i].mark == ' ') continue;
        const std::size_t first = i - std::min(i, kContext);
        const std::size_t last = std::min(i + kContext + 1, steps.size());
        for (std::size_t near = first; near != last; ++near) isShown[near] = true;
    }
    std::string text;
    std::size_t lineNumber = 1;  // before
    for (std::size_t i = 0; i != steps.size(); ++i) {
        const bool isFirst = isShown[i] && (i == 0 || !isShown[i - 1]);
        if (isFirst) text += "@@ line " + std::to_string(lineNumber) + " @@\n";
        if (isShown[i]) text += shown(steps[i]);
        if (steps[i].mark != '+') ++lineNumber;
    }
    return text;
}

}  // namespace vexa::runner
