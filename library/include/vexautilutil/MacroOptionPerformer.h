#pragma once

#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

class BooleanMacroOption;
class SetMacroOption;
class StringMacroOption;
class UInt64MacroOption;

/// Visits options by class: MacroOptionInterface::perform() calls the `action()` for the option's class. An action may
/// change the option.
///
/// The order of the virtual operations is part of the binary interface.
class VEXAUTILUTIL_API MacroOptionPerformerInterface {
public:
    /// Visits a Boolean option.
    virtual void action(BooleanMacroOption& option) = 0;
    /// Visits a string option.
    virtual void action(StringMacroOption& option) = 0;
    /// Visits a set option.
    virtual void action(SetMacroOption& option) = 0;
    /// Visits an unsigned integer option.
    virtual void action(UInt64MacroOption& option) = 0;
    virtual ~MacroOptionPerformerInterface();

protected:
    MacroOptionPerformerInterface() = default;
    MacroOptionPerformerInterface(const MacroOptionPerformerInterface&) = default;
    MacroOptionPerformerInterface& operator=(const MacroOptionPerformerInterface&) = default;
};

/// A performer whose actions do nothing. Derive from it and override the actions that you need.
///
///     class CountSwitches : public MacroOptionPerformerAbstract {
///     public:
///         CountSwitches() : MacroOptionPerformerAbstract(false) {}
///         using MacroOptionPerformerAbstract::action;   // without this, the override hides the other actions
///         void action(BooleanMacroOption&) override { ++count; }
///         int count = 0;
///     };
class VEXAUTILUTIL_API MacroOptionPerformerAbstract : public virtual MacroOptionPerformerInterface {
public:
    /// Creates the performer. The argument has no effect.
    explicit MacroOptionPerformerAbstract(bool);
    MacroOptionPerformerAbstract(const MacroOptionPerformerAbstract&) = default;
    MacroOptionPerformerAbstract& operator=(const MacroOptionPerformerAbstract&) = default;
    /// Does nothing.
    void action(BooleanMacroOption& option) override;
    /// Does nothing.
    void action(StringMacroOption& option) override;
    /// Does nothing.
    void action(SetMacroOption& option) override;
    /// Does nothing.
    void action(UInt64MacroOption& option) override;
    ~MacroOptionPerformerAbstract() override;
};

}  // namespace vexa::vexautilutil
