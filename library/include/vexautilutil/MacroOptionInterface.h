#pragma once

#include <string>

#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

class MacroOptionPerformerInterface;

/// A named option of a macro command. The classes for the types of values have this class as a public virtual base.
///
/// Ownership: options are shared. A command holds each option as a `std::shared_ptr<MacroOptionInterface>`, and an
///            option lives as long as its last owner.
/// The order of the virtual operations is part of the binary interface.
class VEXAUTILUTIL_API MacroOptionInterface {
public:
    /// Calls the `action()` of \p performer for the option's class, with the option as the argument. Does nothing else.
    virtual void perform(MacroOptionPerformerInterface& performer) = 0;
    /// Returns a copy of the name, exactly as given or parsed.
    virtual std::string name() const = 0;
    /// Returns true if the option has a default and its value equals the default. Each class defines "equals".
    virtual bool isDefaultValue() const = 0;
    /// Returns the option's macro text, NAME=VALUE.
    virtual std::string toString() const = 0;
    virtual ~MacroOptionInterface();

protected:
    MacroOptionInterface() = default;
    MacroOptionInterface(const MacroOptionInterface&) = default;
    MacroOptionInterface& operator=(const MacroOptionInterface&) = default;
};

}  // namespace vexa::vexautilutil
