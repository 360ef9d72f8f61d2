#include "commands/diff/TraceDifference.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <vector>

#include "text/Columns.h"
#include "text/LineDifference.h"

namespace vexa::runner {
namespace {

using Lines = std::vector<std::string>;
using Views = std::vector<std::string_view>;

constexpr std::size_t kContext = 3;

Views viewsOf(const Lines& lines) { return {lines.begin(), lines.end()}; }

Lines masked(const Lines& lines) {
    Lines all;
    for (const std::string& line : lines) all.push_back(withoutHandleNumbers(line));
    return all;
}

bool differ(const std::vector<LineStep>& steps) {
    return std::any_of(steps.begin(), steps.end(), [](const LineStep& step) { return step.mark != ' '; });
}

// Compares the numbers of handles only if nothing else differs: a handle more shifts the numbers of all later ones.
struct Comparison {
    Comparison(const Lines& before, const Lines& now) : beforeKeys(masked(before)), nowKeys(masked(now)) {
        steps = lineSteps(viewsOf(beforeKeys), viewsOf(nowKeys));
        if (differ(steps) || before == now) return;
        beforeKeys = before;
        nowKeys = now;
        steps = lineSteps(viewsOf(beforeKeys), viewsOf(nowKeys));
    }

    Lines beforeKeys;
    Lines nowKeys;
    std::vector<LineStep> steps;
};

struct Counts {
    std::size_t added = 0;
    std::size_t gone = 0;
    std::size_t reordered = 0;
};

// A line that is gone in one place and new in another is reordered.
Counts countsOf(const Comparison& comparison) {
    std::map<std::string_view, std::size_t> goneLines;
    Counts counts;
    for (const LineStep& step : comparison.steps) {
        if (step.mark != '-') continue;
        ++goneLines[comparison.beforeKeys[step.before]];
        ++counts.gone;
    }
    for (const LineStep& step : comparison.steps) {
        if (step.mark != '+') continue;
        std::size_t& left = goneLines[comparison.nowKeys[step.now]];
        ++(left == 0 ? counts.added : counts.reordered);
        if (left != 0) --left;
    }
    counts.gone -= counts.reordered;
    return counts;
}

std::string shownLines(const Comparison& comparison, const Lines& before, const Lines& now) {
    const auto& steps = comparison.steps;
    const auto isChange = [](const LineStep& step) { return step.mark != ' '; };
    const auto first = std::find_if(steps.begin(), steps.end(), isChange);
    const auto last = std::find_if_not(first, steps.end(), isChange);
    const auto from = first - std::min<std::ptrdiff_t>(first - steps.begin(), kContext);
    const auto to = last + std::min<std::ptrdiff_t>(steps.end() - last, kContext);
    std::string text;
    for (auto step = from; step != to; ++step) {
        text +=
            std::string("  ") + step->mark + ' ' + (step->mark == '+' ? now[step->now] : before[step->before]) + '\n';
    }
    return text;
}

class Difference {
public:
    Difference(const CallLines& before, const CallLines& now) {
        const Lines oldNames = namesOf(before);
        const Lines newNames = namesOf(now);
        for (const LineStep& step : lineSteps(viewsOf(oldNames), viewsOf(newNames))) {
            const CommandLines none;
            const CommandLines& old = step.mark == '+' ? none : before.commands[step.before];
            const CommandLines& current = step.mark == '-' ? none : now.commands[step.now];
            compare(step.mark, old, current);
        }
        if (before.outcome == now.outcome) return;
        addFirst("the end of the run", "  - " + before.outcome + "\n  + " + now.outcome + '\n');
    }

    std::string text() const {
        std::string text = m_first;
        if (m_rows.size() > 1) text += '\n' + columnsOf(m_rows);
        return text;
    }

private:
    static Lines namesOf(const CallLines& lines) {
        Lines names;
        for (const CommandLines& command : lines.commands) names.push_back(command.name);
        return names;
    }

    void compare(char mark, const CommandLines& before, const CommandLines& now) {
        if (mark == ' ' && before.lines == now.lines) return;
        const CommandLines& command = mark == '+' ? now : before;
        const std::string which = mark == '+'   ? ", only in the second trace"
                                  : mark == '-' ? ", only in the first trace"
                                                : "";
        const Comparison comparison(before.lines, now.lines);
        const Counts counts = countsOf(comparison);
        addFirst(command.name + (command.place.empty() ? "" : " (" + command.place + ')') + which,
                 shownLines(comparison, before.lines, now.lines));
        m_rows.push_back({std::to_string(counts.added), std::to_string(counts.gone), std::to_string(counts.reordered),
                          command.name + which});
    }

    void addFirst(const std::string& where, const std::string& lines) {
        if (m_first.empty()) m_first = "first difference: " + where + '\n' + lines;
    }

    std::string m_first;
    std::vector<Lines> m_rows = {{"ADDED", "GONE", "REORDERED", "COMMAND"}};
};

}  // namespace

std::string traceDifference(const CallLines& before, const CallLines& now) { return Difference(before, now).text(); }

}  // namespace vexa::runner
