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

struct Step {
    char mark;  // ' ' for a line in both texts, '-' only in the old one, '+' only in the new one
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

char markOf(dtl::edit_t edit) { return edit == dtl::SES_COMMON ? ' ' : edit == dtl::SES_DELETE ? '-' : '+'; }

// dtl may add lines before it deletes the ones that they replace.
void putDeletionsFirst(std::vector<Step>& steps) {
    const auto isCommon = [](const Step& step) { return step.mark == ' '; };
    const auto isDeletion = [](const Step& step) { return step.mark == '-'; };
    for (auto first = steps.begin(); first != steps.end();) {
        first = std::find_if_not(first, steps.end(), isCommon);
        const auto last = std::find_if(first, steps.end(), isCommon);
        std::stable_partition(first, last, isDeletion);
        first = last;
    }
}

// dtl limits its memory, so for large texts with little in common the difference may not be the shortest one.
std::vector<Step> stepsBetween(const Lines& before, const Lines& now) {
    dtl::Diff<std::string_view, Lines> difference(before, now);
    difference.compose();
    std::vector<Step> steps;
    for (const auto& [line, edit] : difference.getSes().getSequence()) steps.push_back({markOf(edit.type), line});
    putDeletionsFirst(steps);
    return steps;
}

std::string shown(const Step& step) {
    std::string line = std::string(1, step.mark) + ' ' + std::string(step.line);
    if (line.back() != '\n') line += '\n';
    return line;
}

}  // namespace

std::size_t firstDifference(const std::string& before, const std::string& now) {
    const Lines old = linesOf(before);
    const Lines current = linesOf(now);
    const auto [different, ignored] = std::mismatch(old.begin(), old.end(), current.begin(), current.end());
    const auto equal = static_cast<std::size_t>(different - old.begin());
    return std::max<std::size_t>(std::min(equal + 1, old.size()), 1);
}

std::string lineDifference(const std::string& before, const std::string& now) {
    const std::vector<Step> steps = stepsBetween(linesOf(before), linesOf(now));
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
