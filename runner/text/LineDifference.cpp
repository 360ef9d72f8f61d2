#include "text/LineDifference.h"

#include <algorithm>
#include <cstddef>
#include <dtl/dtl.hpp>
#include <string_view>
#include <vector>

namespace vexa::runner {
namespace {

using Lines = std::vector<std::string_view>;

constexpr std::size_t kContext = 3;

Lines linesOf(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        const std::size_t size = std::min(text.find('\n'), text.size() - 1) + 1;
        lines.push_back(text.substr(0, size));
        text.remove_prefix(size);
    }
    return lines;
}

char markOf(dtl::edit_t edit) { return edit == dtl::SES_COMMON ? ' ' : edit == dtl::SES_DELETE ? '-' : '+'; }

// dtl may add lines before it deletes the ones that they replace.
void putDeletionsFirst(std::vector<LineStep>& steps) {
    const auto isCommon = [](const LineStep& step) { return step.mark == ' '; };
    const auto isDeletion = [](const LineStep& step) { return step.mark == '-'; };
    for (auto first = steps.begin(); first != steps.end();) {
        first = std::find_if_not(first, steps.end(), isCommon);
        const auto last = std::find_if(first, steps.end(), isCommon);
        std::stable_partition(first, last, isDeletion);
        first = last;
    }
}

void number(std::vector<LineStep>& steps) {
    std::size_t before = 0;
    std::size_t now = 0;
    for (LineStep& step : steps) {
        step.before = before;
        step.now = now;
        if (step.mark != '+') ++before;
        if (step.mark != '-') ++now;
    }
}

std::string shown(char mark, std::string_view text) {
    std::string line = std::string(1, mark) + ' ' + std::string(text);
    if (line.back() != '\n') line += '\n';
    return line;
}

}  // namespace

// dtl limits its memory, so for large texts with little in common the difference may not be the shortest one.
std::vector<LineStep> lineSteps(const Lines& before, const Lines& now) {
    dtl::Diff<std::string_view, Lines> difference(before, now);
    difference.compose();
    std::vector<LineStep> steps;
    for (const auto& [line, edit] : difference.getSes().getSequence()) steps.push_back({markOf(edit.type), 0, 0});
    putDeletionsFirst(steps);
    number(steps);
    return steps;
}

std::size_t firstDifference(const std::string& before, const std::string& now) {
    const Lines old = linesOf(before);
    const Lines current = linesOf(now);
    const auto [different, ignored] = std::mismatch(old.begin(), old.end(), current.begin(), current.end());
    const auto equal = static_cast<std::size_t>(different - old.begin());
    return std::max<std::size_t>(std::min(equal + 1, old.size()), 1);
}

std::string lineDifference(const std::string& before, const std::string& now) {
    const Lines old = linesOf(before);
    const Lines current = linesOf(now);
    const std::vector<LineStep> steps = lineSteps(old, current);
    std::vector<bool> isShown(steps.size());
    for (std::size_t i = 0; i != steps.size(); ++i) {
        if (steps[i].mark == ' ') continue;
        const std::size_t first = i - std::min(i, kContext);
        const std::size_t last = std::min(i + kContext + 1, steps.size());
        for (std::size_t near = first; near != last; ++near) isShown[near] = true;
    }
    std::string text;
    for (std::size_t i = 0; i != steps.size(); ++i) {
        const bool isFirst = isShown[i] && (i == 0 || !isShown[i - 1]);
        if (isFirst) text += "@@ line " + std::to_string(steps[i].before + 1) + " @@\n";
        if (!isShown[i]) continue;
        text += shown(steps[i].mark, steps[i].mark == '+' ? current[steps[i].now] : old[steps[i].before]);
    }
    return text;
}

}  // namespace vexa::runner
