#pragma once

#include <string>

#include "vexautilutil/Export.h"
#include "vexautilutil/MacroOptionInterface.h"
#include "vexautilutil/MacroTokens.h"

namespace vexa::vexautilutil {

/// An option that holds a truth value, written NAME=TRUE or NAME=FALSE.
///
///     ENABLED=true   -> true, rendered as ENABLED=TRUE: any letter case is read, upper case is written
///     ENABLED=YES    -> refused, as is everything but TRUE and FALSE
///
/// The order of the virtual operations and of the fields is part of the binary contract.
class VEXAUTILUTIL_API BooleanMacroOption : public virtual MacroOptionInterface {
public:
    /// Makes an option from values.
    /// \param name         kept verbatim; it is not checked.
    /// \param value        the current value.
    /// \param defaultValue the default, copied; null for none.
    BooleanMacroOption(const std::string& name, bool value, const bool* defaultValue);

    /// Reads one option from a token stream, and leaves \p current past its value.
    /// \param current      where to read, on the option's name.
    /// \param end          the end of the stream.
    /// \param defaultValue the default, copied; null for none.
    /// \throws MacroCommandError with \p current on the offending token: the texts of parseIdentifier() and
    ///         parseAssignmentOperator(); "Expected Boolean operator missing" at the end of the stream; "Expected a
    ///         Boolean operator, but found " + the token.
    BooleanMacroOption(MacroTokenIterator& current, const MacroTokenIterator& end, const bool* defaultValue);

    BooleanMacroOption(const BooleanMacroOption&) = default;
    BooleanMacroOption& operator=(const BooleanMacroOption&) = default;

    void perform(MacroOptionPerformerInterface& performer) override;
    std::string name() const override;
    /// Whether there is a default and the value equals it.
    bool isDefaultValue() const override;
    std::string toString() const override;
    ~BooleanMacroOption() override;
    /// The current value.
    virtual bool value() const;

private:
    std::string m_name;
    bool m_value = false;
    bool m_hasDefault;
    bool m_defaultValue;
};

}  // namespace vexa::vexautilutil
