#pragma once

#include <cstddef>
#include <string>

#include "Table.h"

namespace dataloader {

/// Statistics of the values of a column, without missing values.
struct ColumnSummary {
    std::size_t count = 0;
    std::size_t missing = 0;
    double minimum = 0.0;  ///< this and the following members are valid only if count is above 0
    double maximum = 0.0;
    double mean = 0.0;
    double deviation = 0.0;  ///< of a sample, divided by count - 1; only with a count above 1
};

/// Returns the statistics of \p column.
ColumnSummary summarize(const Column& column);

/// Returns a heading and a line for each column of \p table. Numbers have six significant digits and do not depend on
/// the locale.
std::string summaryText(const Table& table);

}  // namespace dataloader
