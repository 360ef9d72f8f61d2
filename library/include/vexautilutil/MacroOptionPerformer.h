#pragma once

#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

class BooleanMacroOption;
class SetMacroOption;
class StringMacroOption;
class UInt64MacroOption;

/// Visits options by type: MacroOptionInterface::perform() calls the `action` for the option's concrete type.
///
/// The order of the virtual operations is part of the binary contract.
class VEXAUTILUTIL_API MacroOptionPerformerInterface {
public:
    /// Visits a Boolean option, which may be changed.
    virtual void action(BooleanMacroOption& option) = 0;
    /// Visits a string option, which may be changed.
    virtual void action(StringMacroOption& option) = 0;
    /// Visits a set option, which may be changed.
    virtual void action(SetMacroOption& option) = 0;
    /// Visits an unsigned integer option, which may be changed.
    virtual void action(UInt64MacroOption& option) = 0;
    virtual ~MacroOptionPerformerInterface();

protected:
    MacroOptionPerformerInterface() = default;
    MacroOptionPerformerInterface(const MacroOptionPerformerInterface&) = default;
    MacroOptionPerformerInterface& operator=(const MacroOptionPerformerInterface&) = default;
};

/// A performer that does nothing. Derive from it and override the actions that matter.
///
///     class CountSwitches : public MacroOptionPerformerAbstract {
///     public:
///         CountSwitches() : MacroOptionPerformerAbstract(false) {}
///         using MacroOptionPerformerAbstract::action;   // keeps the other actions in sight
///         void action(BooleanMacroOption&) override { ++count; }
///         int count = 0;
///     };
class VEXAUTILUTIL_API MacroOptionPerformerAbstract : public virtual MacroOptionPerformerInterface {
public:
    /// \warning The argument is ignored, on purpose; nothing depends on it.
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
