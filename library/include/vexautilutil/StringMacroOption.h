#pragma once

#include <string>

#include "vexautilutil/Export.h"
#include "vexautilutil/MacroOptionInterface.h"
#include "vexautilutil/MacroTokens.h"

namespace vexa::vexautilutil {

/// An option that holds a text, written NAME= and the text in double or single quotes.
///
///     TITLE="a  b"      -> a  b        Every character between the quotes counts.
///     TITLE='say "hi"'  -> say "hi"
///     TITLE="a\"        -> a\          There are no escapes. The next quote like the opening one ends the text.
///     TITLE=abc         -> refused
///
/// toString() writes a parsed option with the quotes that it was read with.
///
/// \warning A value that contains both kinds of quotes cannot be read back: toString() writes it in single quotes, and
///          the parser stops at the first single quote inside. There is no escape, on purpose.
/// Threads: an option does not change after construction; any thread may read it.
/// The order of the virtual operations and of the fields is part of the binary interface.
class VEXAUTILUTIL_API StringMacroOption : public virtual MacroOptionInterface {
public:
    /// Creates an option from values. toString() writes it in double quotes, or in single quotes if the value contains
    /// a double quote.
    /// \param name         the name; it is not checked.
    /// \param value        the current value, without quotes.
    /// \param defaultValue the default, copied; null if the option has none.
    StringMacroOption(const std::string& name, const std::string& value, const std::string* defaultValue);

    /// Reads one option from a token stream, and moves \p current past the closing quote.
    /// \param current      the option's name in the token stream.
    /// \param end          the end of the stream.
    /// \param defaultValue the default, copied; null if the option has none.
    /// \throws MacroCommandError with \p current on the offending token. The message is one of parseIdentifier() or
    ///         parseAssignmentOperator(), or "Expected single or double quoted string". At the end of the stream it is
    ///         - "Expected string operator missing" if no value follows;
    ///         - "Expected string to terminate with a double quotation mark" or
    ///           "Expected string to terminate with a single quotation mark" if the closing quote is missing.
    StringMacroOption(MacroTokenIterator& current, const MacroTokenIterator& end, const std::string* defaultValue);

    StringMacroOption(const StringMacroOption&) = default;
    StringMacroOption& operator=(const StringMacroOption&) = default;

    void perform(MacroOptionPerformerInterface& performer) override;
    std::string name() const override;
    /// Returns true if the option has a default and the value equals it, byte for byte.
    bool isDefaultValue() const override;
    std::string toString() const override;
    ~StringMacroOption() override;
    /// Returns the current value, without quotes.
    virtual std::string value() const;

private:
    std::string m_name;
    std::string m_value;
    std::string m_quote;
    bool m_hasDefault;
    std::string m_defaultValue;
};

}  // namespace vexa::vexautilutil
