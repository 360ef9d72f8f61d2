#pragma once

#include <cstdint>
#include <string>

#include "vexautilutil/Export.h"
#include "vexautilutil/MacroOptionInterface.h"
#include "vexautilutil/MacroTokens.h"

namespace vexa::vexautilutil {

/// An option that holds an unsigned integer of 64 bits, written NAME=digits.
///
///     COUNT=12, COUNT=+12, COUNT=0012   -> 12, rendered as COUNT=12
///     COUNT=18446744073709551615        -> the largest value; one more is refused
///     COUNT=-5, COUNT=12.5, COUNT=0x10  -> refused: negative values cannot be written
///
/// \warning Reading and writing follow the digit grouping of the global C++ locale. Under the classic one, which is in
///          force unless a program changes it, there is none.
/// The order of the virtual operations and of the fields is part of the binary contract.
class VEXAUTILUTIL_API UInt64MacroOption : public virtual MacroOptionInterface {
public:
    /// Makes an option from values.
    /// \param name         kept verbatim; it is not checked.
    /// \param value        the current value.
    /// \param defaultValue the default, copied; null for none.
    UInt64MacroOption(const std::string& name, uint64_t value, const uint64_t* defaultValue);

    /// Reads one option from a token stream, and leaves \p current past its value.
    /// \param current      where to read, on the option's name.
    /// \param end          the end of the stream.
    /// \param defaultValue the default, copied; null for none.
    /// \throws MacroCommandError with \p current on the offending token: the texts of parseIdentifier() and
    ///         parseAssignmentOperator(); "Expected UInt64 operator missing" at the end of the stream; "Invalid integer
    ///         value " + the token (for COUNT=-5 that is the minus sign alone, a token of its own).
    UInt64MacroOption(MacroTokenIterator& current, const MacroTokenIterator& end, const uint64_t* defaultValue);

    UInt64MacroOption(const UInt64MacroOption&) = default;
    UInt64MacroOption& operator=(const UInt64MacroOption&) = default;

    void perform(MacroOptionPerformerInterface& performer) override;
    std::string name() const override;
    /// Whether there is a default and the value equals it.
    bool isDefaultValue() const override;
    std::string toString() const override;
    ~UInt64MacroOption() override;
    /// The current value.
    virtual uint64_t value() const;

private:
    std::string m_name;
    uint64_t m_value = 0;
    bool m_hasDefault;
    uint64_t m_defaultValue;
};

}  // namespace vexa::vexautilutil
