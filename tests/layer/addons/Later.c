// A library that a command loads. Its constructor calls the host.

#include "vexa/VexaUtil.h"

__attribute__((constructor)) static void callHost(void) { VexaUtilLockStart(0); }
