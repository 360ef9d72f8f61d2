#pragma once

#include <string>

#include "vexautilutil/Export.h"
#include "vexautilutil/MacroOptionInterface.h"
#include "vexautilutil/MacroTokens.h"

namespace vexa::vexautilutil {

/// An option that holds a Boolean, written NAME=TRUE or NAME=FALSE.
///
///     ENABLED=true   -> true; toString() returns ENABLED=TRUE. Any letter case is read; upper case is written.
///     ENABLED=YES    -> refused. Only TRUE and FALSE are values.
///
/// The order of the virtual operations and of the fields is part of the binary interface.
class VEXAUTILUTIL_API BooleanMacroOption : public virtual MacroOptionInterface {
public:
    /// Creates an option from values.
    /// \param name         the name; it is not checked.
    /// \param value        the current value.
    /// \param defaultValue the default, copied; null if the option has none.
    BooleanMacroOption(const std::string& name, bool value, const bool* defaultValue);

    /// Reads one option from a token stream, and moves \p current past its value.
    /// \param current      the option's name in the token stream.
    /// \param end          the end of the stream.
    /// \param defaultValue the default, copied; null if the option has none.
    /// \throws MacroCommandError with \p current on the offending token. The message is one of parseIdentifier() or
    ///         parseAssignmentOperator(), or
    ///         - "Expected Boolean operator missing" at the end of the stream;
    ///         - "Expected a Boolean operator, but found " + the token.
    BooleanMacroOption(MacroTokenIterator& current, const MacroTokenIterator& end, const bool* defaultValue);

    BooleanMacroOption(const BooleanMacroOption&) = default;
    BooleanMacroOption& operator=(const BooleanMacroOption&) = default;

    void perform(MacroOptionPerformerInterface& performer) override;
    std::string name() const override;
    /// Returns true if the option has a default and the value equals it.
    bool isDefaultValue() const override;
    std::string toString() const override;
    ~BooleanMacroOption() override;
    /// Returns the current value.
    virtual bool value() const;

private:
    std::string m_name;
    bool m_value = false;
    bool m_hasDefault;
    bool m_defaultValue;
};

}  // namespace vexa::vexautilutil
