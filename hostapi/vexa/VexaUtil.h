/// \file
/// The host's C add-on API.
///
/// Conventions, stated once for all functions:
/// - Declarations only. The process that loads an add-on supplies the functions: the host application, or the
///   stand-in host. A library that calls them leaves them undefined.
/// - Strings are NUL-terminated and stay with the caller, unless a function says otherwise.
/// - Handles (`Set_s`, `ArgList_s`, `ThreadMutex_s`, host strings) come from an `...Alloc` function and go back
///   through the `...Dealloc` function, which takes the address of the handle and sets the handle to null.
/// - `...Alloc` functions return null when the host has no memory.
/// - Begin and end calls nest; the host counts.
/// - Threads: call from the thread on which the host entered the add-on. The mutex functions may be called from
///   any thread.
#pragma once

#include <stdint.h>

/// Marks the functions of this header as visible across shared objects, whatever visibility a build defaults to.
#if defined(__GNUC__)
#define VEXA_HOST_API __attribute__((visibility("default")))
#else
#define VEXA_HOST_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/// An add-on's identity with the host. Opaque.
typedef struct AddOnList_s AddOnList_s;
/// A set of integers held by the host. Opaque.
typedef struct Set_s Set_s;
/// A list of named arguments for an extended host call. Opaque.
typedef struct ArgList_s ArgList_s;
/// A mutex of the host. Opaque.
typedef struct ThreadMutex_s ThreadMutex_s;

/// The host's Boolean: 1 is true, 0 is false.
typedef int VexaBoolean;
/// A value as wide as a pointer: an integer, or the address of something.
typedef intptr_t VexaArbParam;

/// The outcome of a value query.
typedef enum {
    GetValueReturnCode_Ok = 0,           ///< The value was stored.
    GetValueReturnCode_OtherType = 1,    ///< The value exists, but is not of the kind asked for.
    GetValueReturnCode_UnknownPath = 2,  ///< There is no such setting.
    GetValueReturnCode_NotAvailable = 3  ///< The setting exists, but has no value now.
} GetValueReturnCode_e;

/// Takes the host's lock for the add-on \p addOnId. Blocks while another thread holds it.
VEXA_HOST_API void VexaUtilLockStart(AddOnList_s* addOnId);
/// Gives back the lock taken by VexaUtilLockStart() under the same identity.
VEXA_HOST_API void VexaUtilLockFinish(AddOnList_s* addOnId);

/// Begins an assignment of auxiliary data: the host holds back its broadcasts until the matching end.
VEXA_HOST_API void VexaUtilAuxDataBeginAssign(void);
/// Ends an assignment of auxiliary data.
VEXA_HOST_API void VexaUtilAuxDataEndAssign(void);

/// Suspends (\p suspend 1) or resumes (0) the marking of data sets as changed.
VEXA_HOST_API void VexaUtilDataSetSuspendMarking(VexaBoolean suspend);

/// Begins a modification of solution times: the host holds back its notifications until the matching end.
VEXA_HOST_API void VexaUtilZoneSolutionTimeModificationBegin(void);
/// Ends a modification of solution times.
VEXA_HOST_API void VexaUtilZoneSolutionTimeModificationEnd(void);

/// Makes a mutex, unlocked and not recursive.
VEXA_HOST_API ThreadMutex_s* VexaUtilThreadMutexAlloc(void);
/// Frees an unlocked mutex and sets the handle at \p mutex to null.
VEXA_HOST_API void VexaUtilThreadMutexDealloc(ThreadMutex_s** mutex);
/// Locks \p mutex. Blocks while another thread holds it.
VEXA_HOST_API void VexaUtilThreadMutexLock(ThreadMutex_s* mutex);
/// Unlocks \p mutex, which the calling thread must hold.
VEXA_HOST_API void VexaUtilThreadMutexUnlock(ThreadMutex_s* mutex);

/// Returns 1 while the host runs a macro in batch mode, with no user in front of it.
VEXA_HOST_API VexaBoolean VexaUtilMacroIsBatchModeActive(void);

/// Shows \p text on the status line, with a stop button and a progress bar when asked for.
VEXA_HOST_API void VexaUtilStatusStartPercentDone(const char* text, VexaBoolean showStopButton, VexaBoolean showBar);
/// Moves the bar to \p percent (0 to 100). Returns 0 when the user has asked to stop, 1 otherwise.
VEXA_HOST_API VexaBoolean VexaUtilStatusCheckPercentDone(int percent);
/// Replaces the text on the status line.
VEXA_HOST_API void VexaUtilStatusSetPercentDoneText(const char* text);
/// Takes the status line down.
VEXA_HOST_API void VexaUtilStatusFinishPercentDone(void);

/// Returns 1 while the host records macro commands.
VEXA_HOST_API VexaBoolean VexaUtilMacroIsRecordingActive(void);
/// Returns 1 while the host plays back a data-set journal.
VEXA_HOST_API VexaBoolean VexaUtilStateIsProcessingJournal(void);
/// Returns 1 while the host plays back a layout.
VEXA_HOST_API VexaBoolean VexaUtilStateIsProcessingLayout(void);
/// Records \p command of the add-on \p addOnId in the macro being recorded. Returns 1 when it was recorded.
VEXA_HOST_API VexaBoolean VexaUtilMacroRecordExtCommand(const char* addOnId, const char* command);
/// Adds \p command of the add-on \p addOnId, with its own \p journalData (may be null), to the data-set journal.
/// Returns 1 when it was added.
VEXA_HOST_API VexaBoolean VexaUtilDataSetAddJournalCommand(const char* addOnId, const char* command,
                                                           const char* journalData);

/// Allocates a host string of \p size bytes, the terminating zero included. \p purpose names it in the host's own
/// diagnostics.
VEXA_HOST_API char* VexaUtilStringAlloc(int size, const char* purpose);
/// Frees a host string and sets the handle at \p string to null. For the host side and for tests.
VEXA_HOST_API void VexaUtilStringDealloc(char** string);

/// Makes an empty argument list.
VEXA_HOST_API ArgList_s* VexaUtilArgListAlloc(void);
/// Frees an argument list and sets the handle at \p argList to null.
VEXA_HOST_API void VexaUtilArgListDealloc(ArgList_s** argList);
/// Empties an argument list.
VEXA_HOST_API void VexaUtilArgListClear(ArgList_s* argList);
/// Appends a string argument; the host copies \p value. Returns 1 on success.
VEXA_HOST_API VexaBoolean VexaUtilArgListAppendString(ArgList_s* argList, const char* name, const char* value);
/// Appends an integer argument. Returns 1 on success.
VEXA_HOST_API VexaBoolean VexaUtilArgListAppendInt(ArgList_s* argList, const char* name, long value);
/// Appends the address where a double is to be stored; it must outlive the list. Returns 1 on success.
VEXA_HOST_API VexaBoolean VexaUtilArgListAppendDoublePtr(ArgList_s* argList, const char* name, double* value);
/// Appends the address where an arbitrary value is to be stored; it must outlive the list. Returns 1 on success.
VEXA_HOST_API VexaBoolean VexaUtilArgListAppendArbParamPtr(ArgList_s* argList, const char* name, VexaArbParam* value);

/// Reads one style value. The list holds the strings "P1" to "P6" (the path, outermost first), the integers
/// "Offset1" and "Offset2" (both optional), and one of "DValue" (a double) or "IValue" (any other kind).
VEXA_HOST_API GetValueReturnCode_e VexaUtilStyleGetLowLevelX(ArgList_s* argList);

/// Shows \p message in the host's error dialog. Returns when the user has closed it.
VEXA_HOST_API void VexaUtilDialogErrMsg(const char* message);

/// Makes an empty set.
VEXA_HOST_API Set_s* VexaUtilSetAlloc(void);
/// Frees a set and sets the handle at \p set to null.
VEXA_HOST_API void VexaUtilSetDealloc(Set_s** set);
/// Adds the members \p first to \p last (0 or more, ascending). Returns 1 on success.
VEXA_HOST_API VexaBoolean VexaUtilSetInsert(Set_s* set, int64_t first, int64_t last);
/// Finds the lowest maximal run of members that ends at \p from or above, and stores its ends in \p first and
/// \p last. Returns 0, and leaves both untouched, when there is none.
VEXA_HOST_API VexaBoolean VexaUtilSetNextRange(const Set_s* set, int64_t from, int64_t* first, int64_t* last);

#ifdef __cplusplus
}
#endif
