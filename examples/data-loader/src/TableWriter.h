#pragma once

#include <string>

#include "Table.h"

namespace dataloader {

/// Writes \p table as the file \p fileName, whole or not at all, while the host's status line shows how far it has come
/// and the user may stop it. Cells are separated by commas, names quoted, numbers as short as they can be without a
/// change, missing values NA: readTable() reads the same table again.
/// \throws LoaderError with the reason; the file is then as it was.
void writeTable(const Table& table, const std::string& fileName);

}  // namespace dataloader
