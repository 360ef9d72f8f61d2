#pragma once

#include <optional>
#include <string>

#include "Cells.h"
#include "Table.h"

namespace dataloader {

/// What becomes of a row with a missing value.
enum class MissingValues {
    Refuse,  ///< the file is refused
    Skip,    ///< the row is left out, and counted
    Keep     ///< the value is kept as missing
};

/// What to read.
struct LoadRequest {
    std::string fileName;                ///< relative names start at the current folder
    std::optional<Separator> separator;  ///< none: as the header line has it
    MissingValues missing = MissingValues::Refuse;
};

/// Reads a table of numbers with a line of column names above it, while the host's status line shows how far it has
/// come and the user may stop it.
///
///     # comment, empty lines pass
///     hour,"wind speed [m/s]"
///     0,3.4
///
/// Rows are read where they lie in the file's text; lines may end in CR LF.
/// \throws LoaderError with the reason. What is wrong in a line was shown to the user before, with its number and
///         the file, in the host's error dialog; the reason then is "Nothing was loaded from FILE".
Table readTable(const LoadRequest& request);

}  // namespace dataloader
