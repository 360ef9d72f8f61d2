#pragma once

#include <string>

#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

class MacroOptionPerformerInterface;

/// One named option of a macro command, whatever its type.
///
/// Options are shared: a command holds them as `std::shared_ptr<MacroOptionInterface>`, and an option lives as long
/// as its last owner. Concrete options derive from this class by public virtual inheritance.
///
/// The order of the virtual operations is part of the binary contract.
class VEXAUTILUTIL_API MacroOptionInterface {
public:
    /// Calls the `action` of \p performer that takes the option's own type, passing the option itself. Nothing else.
    virtual void perform(MacroOptionPerformerInterface& performer) = 0;
    /// A copy of the name, exactly as given or parsed.
    virtual std::string name() const = 0;
    /// Whether the option has a default and its value counts as equal to it. Each type has its own comparison.
    virtual bool isDefaultValue() const = 0;
    /// The option's macro text, NAME=VALUE.
    virtual std::string toString() const = 0;
    virtual ~MacroOptionInterface();

protected:
    MacroOptionInterface() = default;
    MacroOptionInterface(const MacroOptionInterface&) = default;
    MacroOptionInterface& operator=(const MacroOptionInterface&) = default;
};

}  // namespace vexa::vexautilutil
