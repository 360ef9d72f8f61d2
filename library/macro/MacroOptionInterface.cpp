#include "vexautilutil/MacroOptionInterface.h"

namespace vexa::vexautilutil {

// Out of line, so that the class's virtual table and type information live here and nowhere else.
MacroOptionInterface::~MacroOptionInterface() = default;

}  // namespace vexa::vexautilutil
