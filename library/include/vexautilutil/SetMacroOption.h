#pragma once

#include <memory>
#include <string>

#include "vexa/toolbox/Set.h"
#include "vexautilutil/Export.h"
#include "vexautilutil/MacroOptionInterface.h"
#include "vexautilutil/MacroTokens.h"

namespace vexa::vexautilutil {

/// An option that holds a set of integers, written NAME= and the set's own text: `ZONES=[1-3,5]`.
///
/// What stands between the brackets is for vexa::toolbox::Set to accept or refuse. The option takes the text from
/// `[` to the first `]`, blanks included; sets do not nest.
///
/// Ownership: the option copies the sets it is made from. It shares its own set with whoever calls value(), and with
///            its copies: a change made through one is seen by all.
/// Threads:   one that changes the shared set and one that renders the option must be serialised by the caller.
/// The order of the virtual operations and of the fields is part of the binary contract.
class VEXAUTILUTIL_API SetMacroOption : public virtual MacroOptionInterface {
public:
    /// Makes an option from values.
    /// \param name         kept verbatim; it is not checked.
    /// \param value        the current value, copied; null for none.
    /// \param hasDefault   whether the option has a default. This flag decides, not the next parameter.
    /// \param defaultValue the default, copied; ignored when \p hasDefault is false. May be null.
    SetMacroOption(const std::string& name, const vexa::toolbox::Set* value, bool hasDefault,
                   const vexa::toolbox::Set* defaultValue);

    /// Reads one option from a token stream, and leaves \p current past the closing bracket.
    /// \param current      where to read, on the option's name.
    /// \param end          the end of the stream.
    /// \param hasDefault   as above.
    /// \param defaultValue as above.
    /// \throws MacroCommandError with \p current on the offending token: the texts of parseIdentifier() and
    ///         parseAssignmentOperator(); "Expected set operator missing" or "Expected closing set character, ]" at
    ///         the end of the stream; "Expected opening set character, [". With \p current past the `]`: the set's own
    ///         text, when it refuses what stands between the brackets.
    /// \throws std::bad_alloc when memory runs out.
    SetMacroOption(MacroTokenIterator& current, const MacroTokenIterator& end, bool hasDefault,
                   const vexa::toolbox::Set* defaultValue);

    SetMacroOption(const SetMacroOption&) = default;
    SetMacroOption& operator=(const SetMacroOption&) = default;

    void perform(MacroOptionPerformerInterface& performer) override;
    std::string name() const override;
    /// Whether there is a default and value and default are the same object.
    /// \warning This is a test of identity, on purpose: an option that holds a set is never at its default, whatever
    ///          the members, so a command always writes it. Only an option made without value, with \p hasDefault true
    ///          and a null default is at its default.
    bool isDefaultValue() const override;
    /// NAME= and the text of the set.
    /// \warning An option without a value must not be rendered.
    std::string toString() const override;
    ~SetMacroOption() override;
    /// A further owner of the option's set, not a copy; null when there is none.
    virtual std::shared_ptr<vexa::toolbox::Set> value() const;

private:
    std::string m_name;
    std::shared_ptr<vexa::toolbox::Set> m_value;
    bool m_hasDefault;
    std::shared_ptr<vexa::toolbox::Set> m_defaultValue;
};

}  // namespace vexa::vexautilutil
