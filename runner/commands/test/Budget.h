#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vexa::runner {

/// What a command of a macro costs.
struct CommandCost {
    std::string command;          ///< `ID text`
    std::size_t calls = 0;        ///< calls of the host
    std::size_t allocations = 0;  ///< see AllocationCounter
    std::size_t peakBytes = 0;
};

/// Returns the text of a budget:
///
///     > STATS MEAN ZONES = '1-3'
///       host calls: 12
///       allocations: 340
///       peak bytes: 20480
std::string budgetText(const std::vector<CommandCost>& costs);

/// The difference between a budget and what commands cost now.
struct BudgetComparison {
    bool isExceeded = false;  ///< a number is greater, or the budget does not fit
    std::string reason;       ///< one line
    std::string lines;        ///< each command with other numbers, and these numbers
};

/// Compares the costs \p now with the budget in the file \p path. Both texts are those of a budget, and differ.
///
///     > STATS MEAN ZONES = '1-3'
///       host calls: 12, 3 more than 9
///       peak bytes: 20480, 160 less than 20640
BudgetComparison compareBudget(const std::string& path, const std::string& budget, const std::string& now);

}  // namespace vexa::runner
