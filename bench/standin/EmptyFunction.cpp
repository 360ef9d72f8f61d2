#include "standin/EmptyFunction.h"

int vexaBenchDoNothing() { return 0; }
