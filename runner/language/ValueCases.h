#pragma once

#include <string>
#include <vector>

#include "formats/CommandDescription.h"

namespace vexa::runner {

/// A value that an option must accept, or refuse, by its description.
struct ValueCase {
    std::string what;   ///< for example "at its maximum"
    std::string value;  ///< as a command has it
};

/// 2 to the power of 32. An Int32 reads a number and this more as the same number.
inline constexpr long double kBeyondInt32 = 4294967296.0L;

/// Returns the values of \p option that an add-on accepts if the description is right.
/// \param sample such a value, as a command has it.
std::vector<ValueCase> acceptedValues(const OptionDescription& option, CommandKind_e kind, const std::string& sample);

/// Returns values that an add-on refuses if the description is right: of another type, or outside of the limits.
std::vector<ValueCase> refusedValues(const OptionDescription& option, CommandKind_e kind);

/// Return \p value as text. integerText() takes the integers of 64 bits.
std::string integerText(long double value);
std::string numberText(long double value);

/// The word that no description has, as the name or the value of an option.
inline constexpr const char* kUnknownName = "VEXACHECK";

}  // namespace vexa::runner
