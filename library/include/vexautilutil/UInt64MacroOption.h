#pragma once

#include <cstdint>
#include <string>

#include "vexautilutil/Export.h"
#include "vexautilutil/MacroOptionInterface.h"
#include "vexautilutil/MacroTokens.h"

namespace vexa::vexautilutil {

/// An option that holds an unsigned 64-bit integer, written NAME=digits.
///
///     COUNT=12, COUNT=+12, COUNT=0012   -> 12; toString() returns COUNT=12
///     COUNT=18446744073709551615        -> the largest value; a larger one is refused
///     COUNT=-5, COUNT=12.5, COUNT=0x10  -> refused
///
/// \warning Reading and writing use the digit grouping of the global C++ locale. The classic locale, which a program
///          has unless it sets another, groups no digits.
/// The order of the virtual operations and of the fields is part of the binary interface.
class VEXAUTILUTIL_API UInt64MacroOption : public virtual MacroOptionInterface {
public:
    /// Creates an option from values.
    /// \param name         the name; it is not checked.
    /// \param value        the current value.
    /// \param defaultValue the default, copied; null if the option has none.
    UInt64MacroOption(const std::string& name, uint64_t value, const uint64_t* defaultValue);

    /// Reads one option from a token stream, and moves \p current past its value.
    /// \param current      the option's name in the token stream.
    /// \param end          the end of the stream.
    /// \param defaultValue the default, copied; null if the option has none.
    /// \throws MacroCommandError with \p current on the offending token. The message is one of parseIdentifier() or
    ///         parseAssignmentOperator(), or
    ///         - "Expected UInt64 operator missing" at the end of the stream;
    ///         - "Invalid integer value " + the token. For COUNT=-5 the token is the minus sign alone.
    UInt64MacroOption(MacroTokenIterator& current, const MacroTokenIterator& end, const uint64_t* defaultValue);

    UInt64MacroOption(const UInt64MacroOption&) = default;
    UInt64MacroOption& operator=(const UInt64MacroOption&) = default;

    void perform(MacroOptionPerformerInterface& performer) override;
    std::string name() const override;
    /// Returns true if the option has a default and the value equals it.
    bool isDefaultValue() const override;
    std::string toString() const override;
    ~UInt64MacroOption() override;
    /// Returns the current value.
    virtual uint64_t value() const;

private:
    std::string m_name;
    uint64_t m_value = 0;
    bool m_hasDefault;
    uint64_t m_defaultValue;
};

}  // namespace vexa::vexautilutil
