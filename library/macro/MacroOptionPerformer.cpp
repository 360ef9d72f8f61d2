#include "vexautilutil/MacroOptionPerformer.h"

namespace vexa::vexautilutil {

// Out of line, so that the class's virtual table and type information live here and nowhere else.
MacroOptionPerformerInterface::~MacroOptionPerformerInterface() = default;

MacroOptionPerformerAbstract::MacroOptionPerformerAbstract(bool /*ignored*/) {}

void MacroOptionPerformerAbstract::action(BooleanMacroOption& /*option*/) {}

void MacroOptionPerformerAbstract::action(StringMacroOption& /*option*/) {}

void MacroOptionPerformerAbstract::action(SetMacroOption& /*option*/) {}

void MacroOptionPerformerAbstract::action(UInt64MacroOption& /*option*/) {}

MacroOptionPerformerAbstract::~MacroOptionPerformerAbstract() = default;

}  // namespace vexa::vexautilutil
