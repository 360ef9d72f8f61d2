#pragma once

#include <functional>
#include <string>
#include <vector>

#include "formats/CommandDescription.h"

namespace vexa::runner {

/// Runs a command, without the add-on's id, and returns what the add-on records: lines with the id.
using RecordCommand = std::function<std::vector<std::string>(const std::string& text)>;

/// Returns what is wrong with the defaults of \p command, as messages. A default is wrong if the add-on records another
/// value for an option that the command does not have. It is also wrong if the add-on omits the defaults of other
/// options from what it records, as MacroCommandAbstract::toString() does, but not this one. The defaults of options
/// that are not recorded cannot be tested.
std::vector<std::string> wrongDefaults(const AddOnDescription& addOn, const CommandDescription& command,
                                       const RecordCommand& record);

}  // namespace vexa::runner
