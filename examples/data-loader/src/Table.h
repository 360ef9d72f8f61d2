#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace dataloader {

/// A column: its name, and one value per row. A missing value is a NaN.
struct Column {
    std::string name;
    std::vector<double> values;
};

/// The table loaded from a file.
struct Table {
    std::string fileName;
    std::vector<Column> columns;  ///< not empty, of the same length
    std::size_t rowsLeftOut = 0;  ///< rows that were skipped because of missing values

    std::size_t rowCount() const { return columns.front().values.size(); }
};

}  // namespace dataloader
