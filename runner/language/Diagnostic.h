#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "vexastandin/Finding.h"

namespace vexa::runner {

/// A part of a line, in bytes from its start.
struct Span {
    std::size_t begin = 0;
    std::size_t end = 0;  ///< after the last byte

    bool isEmpty() const { return begin == end; }
};

/// A mistake in a macro.
struct Diagnostic {
    const char* rule;      ///< one of languageRules()
    std::string message;   ///< one line; it names the command or the option
    Span span;             ///< the part of the line to mark
    std::size_t line = 1;  ///< counted from 1
    standin::Severity_e severity = standin::Severity_e::Error;
};

/// \name The rules of diagnostics
/// @{
inline constexpr const char* kWrongLine = "wrong-line";
inline constexpr const char* kUnknownAddOn = "unknown-add-on";
inline constexpr const char* kUnknownCommand = "unknown-command";
inline constexpr const char* kUnknownOption = "unknown-option";
inline constexpr const char* kMissingOption = "missing-option";
inline constexpr const char* kRepeatedOption = "repeated-option";
inline constexpr const char* kWrongAssignment = "wrong-assignment";
inline constexpr const char* kWrongValue = "wrong-value";
inline constexpr const char* kOutOfRange = "value-out-of-range";
inline constexpr const char* kWrongQuote = "wrong-quote";
inline constexpr const char* kWrongBracket = "wrong-bracket";
/// @}

/// Returns the rules of diagnostics, with their explanations.
const std::vector<standin::Rule>& languageRules();

}  // namespace vexa::runner
