#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "vexastandin/Host.h"
#include "vexastandin/StyleValue.h"

namespace vexa::runner {

/// How many keywords the path of a setting has at most.
inline constexpr std::size_t kMostStyleKeywords = 6;

/// A setting of a style file.
struct StyleSetting {
    std::vector<std::string> path;                 ///< its keywords, outermost first
    std::optional<std::pair<long, long>> offsets;  ///< the pair it is for; for every other one without
    standin::StyleValue value;
};

/// Reads the text of a style file, which is JSON: keywords in one another, and values.
///
///     {"FIELDMAP": {"MESH": {"LINETHICKNESS": 0.4}}}      a double, of the path FIELDMAP, MESH, LINETHICKNESS
///     {"FRAME": 3}                                        an integer: no point, no exponent
///     {"FRAME": {"$double": 3}}                           a double all the same
///     {"TITLE": {"TEXT": "Wake"}}                         a text
///     {"ACTIVEFIELDMAPS": [1, 2, "5-7"]}                  a set: indices, and ranges as sets write them
///     {"ACTIVEFIELDMAPS": {"$set": "[1-2,5-7]"}}          the same set
///     {"SIZE": {"$offsets": [{"offset1": 1, "value": 2.5}, {"offset1": 2, "offset2": 1, "value": 3.5}],
///               "$value": 1.5}}                           values for pairs of offsets; an offset left out is 0.
///                                                         "$value" is for all other pairs, and may be left out
///
/// Refused, besides what is none of these: a keyword that is empty, holds a NUL, begins with `$` or is given twice in
/// one object (ignoring the case of ASCII letters), more than six of them in one another, a text with a NUL, and a
/// value of a kind that add-ons do not take its last keyword for: an integer that is taken for a text is an address.
/// \throws JsonError
std::vector<StyleSetting> parseStyles(const std::string& text);

/// Reads a style file, `-` for the standard input, and tells what is wrong with it: "FILE:LINE:COLUMN: reason". Nothing
/// comes of a wrong one.
std::optional<std::vector<StyleSetting>> readStyles(const std::string& file);

/// Gives \p host settings.
void giveStyles(standin::Host& host, const std::vector<StyleSetting>& settings);

/// Gives \p host the settings of a style file.
/// \return whether the file could be read; if not, \p host is as before, and what is wrong was told.
bool loadStyles(standin::Host& host, const std::string& file);

}  // namespace vexa::runner
