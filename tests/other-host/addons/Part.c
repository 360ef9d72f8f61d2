/* A library of the host's own, for --part. Its calls are the host's, so the contract of add-ons does not bind them. */
#include "vexa/VexaUtil.h"

VEXA_HOST_API void otherHostPart(void);

void otherHostPart(void) {
    VexaUtilAuxDataBeginAssign();
    VexaUtilStatusCheckPercentDone(200);
    VexaUtilArgListClear(0);
    VexaUtilSetAlloc();
}
