/* Calls an add-on's code, which may leave by an exception although the host's interface forbids it. */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

typedef void (*Work_f)(void* data);

/* Calls `work`. Returns 1 if it returned; otherwise 0, with the reason in `why`. */
int callGuarded(Work_f work, void* data, char* why, int size);

#ifdef __cplusplus
}
#endif
