#include "vexautilutil/MacroOptionInterface.h"

namespace vexa::vexautilutil {

// Not inline, so that only this file has the virtual table and type information of the class.
MacroOptionInterface::~MacroOptionInterface() = default;

}  // namespace vexa::vexautilutil
