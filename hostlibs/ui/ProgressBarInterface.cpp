#include "vexa/ui/ProgressBarInterface.h"

namespace vexa::ui {

// Not inline, so that only this file has the virtual table and type information of the class.
ProgressBarInterface::~ProgressBarInterface() = default;

}  // namespace vexa::ui
