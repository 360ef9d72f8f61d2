#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/CommandDescription.h"

namespace vexa::runner {

/// The end of the name of a description file: `stats.commands.json` describes the commands of `stats.so`.
inline constexpr const char* kDescriptionEnding = ".commands.json";

/// The outcome of reading a description.
struct ReadDescription {
    AddOnDescription description;       ///< incomplete if there are problems
    std::vector<std::string> problems;  ///< `FILE: /commands/0/options/2/type: reason (LINE:COLUMN)`, in their order
};

/// Reads the text of the description \p file, which is JSON in the form of descriptionSchema():
///
///     {"addon": "STATS",
///      "commands": [{"name": "MEAN", "kind": "processor", "purpose": "Prints the mean of a column.",
///                    "options": [{"name": "COLUMN", "type": "Int64", "min": 1, "required": true,
///                                 "help": "the column, counted from 1"}],
///                    "examples": ["MEAN COLUMN = 2"]}]}
///
/// A problem names the JSON pointer of the value, and its line and column. A text that is not JSON has one problem,
/// `FILE:LINE:COLUMN: reason`. At most 20 problems are listed.
ReadDescription parseDescription(const std::string& text, const std::string& file);

/// Reads a description of at most 4 MiB; `-` is the standard input. Prints its problems.
/// \return nothing if there was one.
std::optional<AddOnDescription> readDescription(const std::string& file);

/// Returns the name of the description beside the add-on \p addOnFile: `build/stats.commands.json` for
/// `build/stats.so`.
std::string descriptionBeside(const std::string& addOnFile);

/// Returns the JSON Schema of descriptions, draft 7.
std::string_view descriptionSchema();

}  // namespace vexa::runner
