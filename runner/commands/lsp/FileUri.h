#pragma once

#include <string>
#include <string_view>

namespace vexa::runner {

/// Returns the path of a file in a URI; empty if the URI is no file of this computer.
///
///     file:///tmp/a%20b.macro  ->  /tmp/a b.macro
///     untitled:Untitled-1      ->  (empty)
std::string pathOfUri(std::string_view uri);

}  // namespace vexa::runner
