#pragma once

#include <cstddef>
#include <string>

#include "vexastandin/Host.h"

namespace vexa::runner {

/// How many keywords the path of a setting has at most.
inline constexpr std::size_t kMostStyleKeywords = 6;

/// Gives \p host the settings of a style file, and tells what is wrong with the file: "FILE:LINE:COLUMN: reason".
///
/// A style file is JSON: keywords in one another, and values.
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
/// \return whether the file could be read; if not, \p host is as before.
bool loadStyles(standin::Host& host, const std::string& file);

}  // namespace vexa::runner
