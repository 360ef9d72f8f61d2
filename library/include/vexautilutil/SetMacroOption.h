#pragma once

#include <memory>
#include <string>

#include "vexa/toolbox/Set.h"
#include "vexautilutil/Export.h"
#include "vexautilutil/MacroOptionInterface.h"
#include "vexautilutil/MacroTokens.h"

namespace vexa::vexautilutil {

/// An option that holds a set of integers, written NAME= and the text of the set: `ZONES=[1-3,5]`.
///
/// The option takes the text from `[` to the first `]`, including blanks. vexa::toolbox::Set accepts or refuses it.
///
/// Ownership: the constructors copy the sets that they are given. The option shares its own set with the callers of
///            value() and with copies of the option: all of them see a change of the set.
/// Threads:   do not change the shared set while another thread calls toString().
/// The order of the virtual operations and of the fields is part of the binary interface.
class VEXAUTILUTIL_API SetMacroOption : public virtual MacroOptionInterface {
public:
    /// Creates an option from values.
    /// \param name         the name; it is not checked.
    /// \param value        the current value, copied; null for an option without a value.
    /// \param hasDefault   true if the option has a default, even if \p defaultValue is null.
    /// \param defaultValue the default, copied; may be null. Ignored if \p hasDefault is false.
    SetMacroOption(const std::string& name, const vexa::toolbox::Set* value, bool hasDefault,
                   const vexa::toolbox::Set* defaultValue);

    /// Reads one option from a token stream, and moves \p current past the closing bracket.
    /// \param current      the option's name in the token stream.
    /// \param end          the end of the stream.
    /// \param hasDefault   as in the first constructor.
    /// \param defaultValue as in the first constructor.
    /// \throws MacroCommandError with \p current on the offending token. The message is one of parseIdentifier() or
    ///         parseAssignmentOperator(), or
    ///         - "Expected set operator missing" at the end of the stream;
    ///         - "Expected opening set character, [" if the token is not `[`;
    ///         - "Expected closing set character, ]" at the end of the stream;
    ///         - the message of vexa::toolbox::Set::assign() if the set refuses the text. \p current is then past the
    ///           `]`.
    /// \throws std::bad_alloc if memory runs out.
    SetMacroOption(MacroTokenIterator& current, const MacroTokenIterator& end, bool hasDefault,
                   const vexa::toolbox::Set* defaultValue);

    SetMacroOption(const SetMacroOption&) = default;
    SetMacroOption& operator=(const SetMacroOption&) = default;

    void perform(MacroOptionPerformerInterface& performer) override;
    std::string name() const override;
    /// Returns true if the option has a default, and value and default are the same object.
    /// \warning It compares objects, not members, on purpose: an option that holds a set is never at its default, so a
    ///          command always writes it. Only an option without a value, with \p hasDefault true and a null default,
    ///          is at its default.
    bool isDefaultValue() const override;
    /// Returns NAME= and the text of the set.
    /// \warning Do not call it for an option without a value.
    std::string toString() const override;
    ~SetMacroOption() override;
    /// Returns the option's own set, not a copy; null if the option has no value.
    virtual std::shared_ptr<vexa::toolbox::Set> value() const;

private:
    std::string m_name;
    std::shared_ptr<vexa::toolbox::Set> m_value;
    bool m_hasDefault;
    std::shared_ptr<vexa::toolbox::Set> m_defaultValue;
};

}  // namespace vexa::vexautilutil
