#include "vexa/ui/ProgressBarInterface.h"

namespace vexa::ui {

// Out of line, so that the class's virtual table and type information live here and nowhere else.
ProgressBarInterface::~ProgressBarInterface() = default;

}  // namespace vexa::ui
