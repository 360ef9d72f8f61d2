#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "formats/CommandDescription.h"

namespace vexa::runner {

/// What is wrong with a value.
struct WrongValue {
    const char* rule;
    std::string reason;  ///< for example "expected an Int64, but found x"
};

/// Checks \p written, the value of \p option as a command of kind \p kind has it.
/// \return nothing if the add-on accepts it.
std::optional<WrongValue> whyWrong(std::string_view written, const OptionDescription& option, CommandKind_e kind);

/// Writes \p value, which has no quotes, as a command of kind \p kind has it.
///
///     it's    'it\'s' for a processor with escapes, otherwise "it's"
///     12      12
///     []      [ ] for a processor
std::string writtenValue(const std::string& value, const OptionDescription& option, CommandKind_e kind);

/// Returns `NAME=value` or `NAME = value` for a value as a command has it.
std::string assignment(const std::string& name, const std::string& written, CommandKind_e kind);

}  // namespace vexa::runner
