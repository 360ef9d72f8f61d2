#pragma once

#include <cstddef>
#include <string>

#include "Table.h"

namespace dataloader {

/// What describes the values of a column, without the missing ones.
struct ColumnSummary {
    std::size_t count = 0;
    std::size_t missing = 0;
    double minimum = 0.0;  ///< as all below, only with a count above 0
    double maximum = 0.0;
    double mean = 0.0;
    double deviation = 0.0;  ///< of a sample, divided by count - 1; only with a count above 1
};

/// Describes \p column.
ColumnSummary summarize(const Column& column);

/// A heading and a line for each column of \p table. Numbers have six significant digits and are the same in every
/// locale.
std::string summaryText(const Table& table);

}  // namespace dataloader
