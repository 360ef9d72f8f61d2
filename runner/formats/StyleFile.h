#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "vexastandin/Host.h"
#include "vexastandin/StyleValue.h"

namespace vexa::runner {

/// A setting of a style file.
struct StyleSetting {
    std::vector<std::string> path;                 ///< its keywords, outermost first
    std::optional<std::pair<long, long>> offsets;  ///< the pair of offsets with this value; empty for all other pairs
    standin::StyleValue value;
};

/// Reads the text of a style file, which is JSON: nested keywords, and values.
///
///     {"FIELDMAP": {"MESH": {"LINETHICKNESS": 0.4}}}      a double, of the path FIELDMAP, MESH, LINETHICKNESS
///     {"FRAME": 3}                                        an integer: no point, no exponent
///     {"FRAME": {"$double": 3}}                           a double, too
///     {"TITLE": {"TEXT": "Wake"}}                         a text
///     {"ACTIVEFIELDMAPS": [1, 2, "5-7"]}                  a set: indices, and ranges as sets write them
///     {"ACTIVEFIELDMAPS": {"$set": "[1-2,5-7]"}}          the same set
///     {"SIZE": {"$offsets": [{"offset1": 1, "value": 2.5}, {"offset1": 2, "offset2": 1, "value": 3.5}],
///               "$value": 1.5}}                           values for pairs of offsets; an offset left out is 0.
///                                                         "$value" is for all other pairs, and may be left out
///
/// \throws JsonError for everything else, and for
/// - a keyword that is empty, has a NUL, starts with `$`, or occurs twice in an object, in any letter case
/// - a path of more than six keywords
/// - a text with a NUL
/// - a value of another kind than add-ons expect for its last keyword, because they may use an integer as an address
std::vector<StyleSetting> parseStyles(const std::string& text);

/// Reads a style file; `-` is the standard input. Reports an error as "FILE:LINE:COLUMN: reason".
/// \return empty if there was an error.
std::optional<std::vector<StyleSetting>> readStyles(const std::string& file);

/// Sets \p settings in \p host.
void giveStyles(standin::Host& host, const std::vector<StyleSetting>& settings);

/// Reads a style file, as readStyles() does, and sets its settings in \p host.
/// \return false if the file could not be read; \p host is then unchanged.
bool loadStyles(standin::Host& host, const std::string& file);

}  // namespace vexa::runner
