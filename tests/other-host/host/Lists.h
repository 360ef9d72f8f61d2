/* Argument lists: what a style query finds in one. */
#pragma once

#include "vexa/VexaUtil.h"

/* The argument of this name and kind; null if there is none. */
const char* stringArgument(const ArgList_s* list, const char* name);
const long* intArgument(const ArgList_s* list, const char* name);
double* doublePtrArgument(const ArgList_s* list, const char* name);
VexaArbParam* arbParamPtrArgument(const ArgList_s* list, const char* name);
