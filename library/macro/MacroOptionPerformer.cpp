#include "vexautilutil/MacroOptionPerformer.h"

namespace vexa::vexautilutil {

// Not inline, so that only this file has the virtual table and type information of the class.
MacroOptionPerformerInterface::~MacroOptionPerformerInterface() = default;

MacroOptionPerformerAbstract::MacroOptionPerformerAbstract(bool /*ignored*/) {}

void MacroOptionPerformerAbstract::action(BooleanMacroOption& /*option*/) {}

void MacroOptionPerformerAbstract::action(StringMacroOption& /*option*/) {}

void MacroOptionPerformerAbstract::action(SetMacroOption& /*option*/) {}

void MacroOptionPerformerAbstract::action(UInt64MacroOption& /*option*/) {}

MacroOptionPerformerAbstract::~MacroOptionPerformerAbstract() = default;

}  // namespace vexa::vexautilutil
