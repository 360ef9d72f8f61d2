#pragma once

#include <optional>
#include <string>

#include "Cells.h"
#include "Table.h"

namespace dataloader {

/// How to treat a row with a missing value.
enum class MissingValues {
    Refuse,  ///< the file is refused
    Skip,    ///< the row is skipped and counted
    Keep     ///< the value is kept as missing
};

/// The file to read, and the form of its rows.
struct LoadRequest {
    std::string fileName;                ///< relative names start at the current folder
    std::optional<Separator> separator;  ///< empty: the header line decides
    MissingValues missing = MissingValues::Refuse;
};

/// Reads a table of numbers with a header line of column names. The host's status line shows the progress, and the user
/// can stop the function.
///
///     # comments and empty lines are skipped
///     hour,"wind speed [m/s]"
///     0,3.4
///
/// The function does not copy rows. Lines may end in CR LF.
/// \throws LoaderError with the reason. If a line is wrong, the host's error dialog has already shown the mistake with
/// file
///         and line; the reason is then "Nothing was loaded from FILE".
Table readTable(const LoadRequest& request);

}  // namespace dataloader
