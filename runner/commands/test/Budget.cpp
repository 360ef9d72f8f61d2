#include "commands/test/Budget.h"

#include <optional>
#include <string_view>

#include "text/LineDifference.h"
#include "text/Lines.h"
#include "text/StartsWith.h"
#include "text/WholeNumber.h"

namespace vexa::runner {
namespace {

constexpr std::string_view kCommandMark = "> ";

struct Measure {
    std::string_view start;  // of its line
    std::size_t CommandCost::*number;
};

constexpr Measure kMeasures[] = {{"  host calls: ", &CommandCost::calls},
                                 {"  allocations: ", &CommandCost::allocations},
                                 {"  peak bytes: ", &CommandCost::peakBytes}};

// Reads the text of a budget line by line.
class BudgetReader {
public:
    explicit BudgetReader(const std::string& text) : m_lines(linesOf(text)) {}

    // Returns the costs; nothing if line() is wrong.
    std::optional<std::vector<CommandCost>> read() {
        std::vector<CommandCost> costs;
        while (m_at != m_lines.size()) {
            if (!startsWith(m_lines[m_at], kCommandMark)) return std::nullopt;
            CommandCost cost{m_lines[m_at++].substr(kCommandMark.size())};
            for (const Measure& measure : kMeasures) {
                if (m_at == m_lines.size() || !startsWith(m_lines[m_at], measure.start)) return std::nullopt;
                const auto number = wholeNumberIn(std::string_view(m_lines[m_at]).substr(measure.start.size()));
                if (!number) return std::nullopt;
                cost.*measure.number = *number;
                ++m_at;
            }
            costs.push_back(cost);
        }
        return costs;
    }

    std::size_t line() const { return m_at + 1; }

private:
    std::vector<std::string> m_lines;
    std::size_t m_at = 0;
};

std::string commandsIn(const std::vector<CommandCost>& costs) {
    std::string text;
    for (const CommandCost& cost : costs) text += std::string(kCommandMark) + cost.command + '\n';
    return text;
}

// Returns the lines of the numbers of a command that differ. Sets `isExceeded` if one is greater.
std::string difference(const CommandCost& budget, const CommandCost& now, bool& isExceeded) {
    std::string lines;
    for (const auto& [start, number] : kMeasures) {
        const std::size_t before = budget.*number;
        const std::size_t after = now.*number;
        if (before == after) continue;
        const bool isMore = after > before;
        isExceeded |= isMore;
        lines += std::string(start) + std::to_string(after) + ", " +
                 std::to_string(isMore ? after - before : before - after) + (isMore ? " more" : " less") + " than " +
                 std::to_string(before) + '\n';
    }
    return lines;
}

}  // namespace

std::string budgetText(const std::vector<CommandCost>& costs) {
    std::string text;
    for (const CommandCost& cost : costs) {
        text += std::string(kCommandMark) + cost.command + '\n';
        for (const auto& [start, number] : kMeasures) text += std::string(start) + std::to_string(cost.*number) + '\n';
    }
    return text;
}

BudgetComparison compareBudget(const std::string& path, const std::string& budget, const std::string& now) {
    BudgetReader reader(budget);
    const auto allowed = reader.read();
    const auto costs = BudgetReader(now).read();
    if (!allowed || !costs) {
        return {true, path + ':' + std::to_string(reader.line()) + ": this is not a line of a budget here", ""};
    }
    const std::string commands = commandsIn(*allowed);
    if (commands != commandsIn(*costs)) {
        return {true, "its commands are not those of " + path, lineDifference(commands, commandsIn(*costs))};
    }
    BudgetComparison comparison;
    for (std::size_t i = 0; i != costs->size(); ++i) {
        const std::string lines = difference((*allowed)[i], (*costs)[i], comparison.isExceeded);
        if (!lines.empty()) comparison.lines += std::string(kCommandMark) + (*costs)[i].command + '\n' + lines;
    }
    comparison.reason = (comparison.isExceeded ? "it exceeds " : "it costs less than ") + path;
    return comparison;
}

}  // namespace vexa::runner
