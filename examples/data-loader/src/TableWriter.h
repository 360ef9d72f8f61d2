#pragma once

#include <string>

#include "Table.h"

namespace dataloader {

/// Writes \p table to the file \p fileName, completely or not at all. The host's status line shows the progress, and
/// the user can stop the function. Cells are separated by commas, names are quoted, missing values are NA, and numbers
/// have the shortest form that reads back unchanged. So readTable() reads the same table again. \throws LoaderError
/// with the reason; the file is then unchanged.
void writeTable(const Table& table, const std::string& fileName);

}  // namespace dataloader
