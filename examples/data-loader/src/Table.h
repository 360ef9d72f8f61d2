#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace dataloader {

/// One column: its name, and a value a row. A missing value is not-a-number.
struct Column {
    std::string name;
    std::vector<double> values;
};

/// What was loaded from one file.
struct Table {
    std::string fileName;
    std::vector<Column> columns;  ///< not empty, of the same length
    std::size_t rowsLeftOut = 0;  ///< for their missing values

    std::size_t rowCount() const { return columns.front().values.size(); }
};

}  // namespace dataloader
