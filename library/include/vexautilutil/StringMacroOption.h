#pragma once

#include <string>

#include "vexautilutil/Export.h"
#include "vexautilutil/MacroOptionInterface.h"
#include "vexautilutil/MacroTokens.h"

namespace vexa::vexautilutil {

/// An option that holds a text, written NAME= and the text between two double or two single quotes.
///
///     TITLE="a  b"      -> a  b: every character between the quotes counts
///     TITLE='say "hi"'  -> say "hi"
///     TITLE="a\"        -> a\ : there are no escapes, the first quote of the opening kind ends the text
///     TITLE=abc         -> refused
///
/// A parsed option renders with the quotes that it was written with.
///
/// \warning A value with both kinds of quotes cannot be written so that it reads back: it renders between single
///          quotes, and reading ends at the first single quote within. This is on purpose; there is no escape.
/// Threads: an option does not change once made; reading is safe from any thread.
/// The order of the virtual operations and of the fields is part of the binary contract.
class VEXAUTILUTIL_API StringMacroOption : public virtual MacroOptionInterface {
public:
    /// Makes an option from values. It renders between double quotes, or between single quotes when the value holds a
    /// double quote.
    /// \param name         kept verbatim; it is not checked.
    /// \param value        the current value, without quotes.
    /// \param defaultValue the default, copied; null for none.
    StringMacroOption(const std::string& name, const std::string& value, const std::string* defaultValue);

    /// Reads one option from a token stream, and leaves \p current past the closing quote.
    /// \param current      where to read, on the option's name.
    /// \param end          the end of the stream.
    /// \param defaultValue the default, copied; null for none.
    /// \throws MacroCommandError with \p current on the offending token: the texts of parseIdentifier() and
    ///         parseAssignmentOperator(); "Expected single or double quoted string". With \p current at the end of the
    ///         stream: "Expected string operator missing", "Expected string to terminate with a double quotation mark"
    ///         or "Expected string to terminate with a single quotation mark".
    StringMacroOption(MacroTokenIterator& current, const MacroTokenIterator& end, const std::string* defaultValue);

    StringMacroOption(const StringMacroOption&) = default;
    StringMacroOption& operator=(const StringMacroOption&) = default;

    void perform(MacroOptionPerformerInterface& performer) override;
    std::string name() const override;
    /// Whether there is a default and the value equals it, byte for byte.
    bool isDefaultValue() const override;
    std::string toString() const override;
    ~StringMacroOption() override;
    /// The current value, without quotes.
    virtual std::string value() const;

private:
    std::string m_name;
    std::string m_value;
    std::string m_quote;
    bool m_hasDefault;
    std::string m_defaultValue;
};

}  // namespace vexa::vexautilutil
