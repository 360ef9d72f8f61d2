#include "vexastandin/Observer.h"

namespace vexa::standin {

ObserverInterface::~ObserverInterface() = default;

}  // namespace vexa::standin
