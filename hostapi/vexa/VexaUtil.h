/// \file
/// The host's C add-on API.
///
/// Conventions for all functions:
/// - This header only declares the functions. The process that loads an add-on implements them: the host application or
///   the stand-in host. A library that calls them leaves them undefined.
/// - Strings are NUL-terminated. The caller owns the strings that it passes, unless a function says otherwise.
/// - An `...Alloc` function returns a handle (`Set_s`, `ArgList_s`, `ThreadMutex_s`, a host string), or null if the
///   host has no memory. The matching `...Dealloc` function takes the handle's address, frees the object and sets the
///   handle to null.
/// - Paired calls, such as start and finish, may nest. The host counts them.
/// - Threads: call these functions on the thread on which the host called the add-on. Any thread may call the mutex
///   functions.
#pragma once

#include <stdint.h>

/// Makes the functions of this header visible to other shared objects, whatever the default visibility of a build is.
#if defined(__GNUC__)
#define VEXA_HOST_API __attribute__((visibility("default")))
#else
#define VEXA_HOST_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/// The identity that the host gives an add-on. Opaque.
typedef struct AddOnList_s AddOnList_s;
/// A set of integers in the host. Opaque.
typedef struct Set_s Set_s;
/// A list of named arguments for an extended host call. Opaque.
typedef struct ArgList_s ArgList_s;
/// A mutex of the host. Opaque.
typedef struct ThreadMutex_s ThreadMutex_s;

/// The host's Boolean: 1 is true, 0 is false.
typedef int VexaBoolean;
/// An integer or an address. It has the size of a pointer.
typedef intptr_t VexaArbParam;

/// The result of a query for a value.
typedef enum {
    GetValueReturnCode_Ok = 0,           ///< The host stored the value.
    GetValueReturnCode_OtherType = 1,    ///< The value exists, but has another type than the query.
    GetValueReturnCode_UnknownPath = 2,  ///< The setting does not exist.
    GetValueReturnCode_NotAvailable = 3  ///< The setting exists, but has no value now.
} GetValueReturnCode_e;

/// Takes the host's lock for the add-on \p addOnId. Blocks while another thread holds it.
VEXA_HOST_API void VexaUtilLockStart(AddOnList_s* addOnId);
/// Releases the lock that VexaUtilLockStart() took with the same \p addOnId.
VEXA_HOST_API void VexaUtilLockFinish(AddOnList_s* addOnId);

/// Starts an assignment of auxiliary data. The host sends no broadcasts until the matching VexaUtilAuxDataEndAssign().
VEXA_HOST_API void VexaUtilAuxDataBeginAssign(void);
/// Finishes an assignment of auxiliary data.
VEXA_HOST_API void VexaUtilAuxDataEndAssign(void);

/// If \p suspend is 1, the host stops marking data sets as changed. If it is 0, the host resumes.
VEXA_HOST_API void VexaUtilDataSetSuspendMarking(VexaBoolean suspend);

/// Starts a modification of solution times. The host sends no notifications until the matching
/// VexaUtilZoneSolutionTimeModificationEnd().
VEXA_HOST_API void VexaUtilZoneSolutionTimeModificationBegin(void);
/// Finishes a modification of solution times.
VEXA_HOST_API void VexaUtilZoneSolutionTimeModificationEnd(void);

/// Creates a mutex. It is unlocked and not recursive.
VEXA_HOST_API ThreadMutex_s* VexaUtilThreadMutexAlloc(void);
/// Frees an unlocked mutex and sets the handle at \p mutex to null.
VEXA_HOST_API void VexaUtilThreadMutexDealloc(ThreadMutex_s** mutex);
/// Locks \p mutex. Blocks while another thread holds it.
VEXA_HOST_API void VexaUtilThreadMutexLock(ThreadMutex_s* mutex);
/// Unlocks \p mutex, which the calling thread must hold.
VEXA_HOST_API void VexaUtilThreadMutexUnlock(ThreadMutex_s* mutex);

/// Returns 1 while the host runs a macro in batch mode, that is, without a user.
VEXA_HOST_API VexaBoolean VexaUtilMacroIsBatchModeActive(void);

/// Shows \p text on the status line. Shows a stop button if \p showStopButton is 1, and a progress bar if \p showBar is
/// 1.
VEXA_HOST_API void VexaUtilStatusStartPercentDone(const char* text, VexaBoolean showStopButton, VexaBoolean showBar);
/// Moves the bar to \p percent (0 to 100). Returns 0 if the user has asked to stop, 1 otherwise.
VEXA_HOST_API VexaBoolean VexaUtilStatusCheckPercentDone(int percent);
/// Replaces the text on the status line.
VEXA_HOST_API void VexaUtilStatusSetPercentDoneText(const char* text);
/// Removes the status line.
VEXA_HOST_API void VexaUtilStatusFinishPercentDone(void);

/// Returns 1 while the host records macro commands.
VEXA_HOST_API VexaBoolean VexaUtilMacroIsRecordingActive(void);
/// Returns 1 while the host plays back a data-set journal.
VEXA_HOST_API VexaBoolean VexaUtilStateIsProcessingJournal(void);
/// Returns 1 while the host plays back a layout.
VEXA_HOST_API VexaBoolean VexaUtilStateIsProcessingLayout(void);
/// Records \p command of the add-on \p addOnId in the macro that the host records. Returns 1 if the host recorded it.
VEXA_HOST_API VexaBoolean VexaUtilMacroRecordExtCommand(const char* addOnId, const char* command);
/// Adds \p command of the add-on \p addOnId to the data-set journal. \p journalData is the add-on's own data and may be
/// null. Returns 1 if the host added it.
VEXA_HOST_API VexaBoolean VexaUtilDataSetAddJournalCommand(const char* addOnId, const char* command,
                                                           const char* journalData);

/// Allocates a host string of \p size bytes, including the terminating zero. \p purpose names the string in the host's
/// diagnostics.
VEXA_HOST_API char* VexaUtilStringAlloc(int size, const char* purpose);
/// Frees a host string and sets the handle at \p string to null. Hosts and tests call it.
VEXA_HOST_API void VexaUtilStringDealloc(char** string);

/// Creates an empty argument list.
VEXA_HOST_API ArgList_s* VexaUtilArgListAlloc(void);
/// Frees an argument list and sets the handle at \p argList to null.
VEXA_HOST_API void VexaUtilArgListDealloc(ArgList_s** argList);
/// Removes all arguments from an argument list.
VEXA_HOST_API void VexaUtilArgListClear(ArgList_s* argList);
/// Appends a string argument. The host copies \p value. Returns 1 on success.
VEXA_HOST_API VexaBoolean VexaUtilArgListAppendString(ArgList_s* argList, const char* name, const char* value);
/// Appends an integer argument. Returns 1 on success.
VEXA_HOST_API VexaBoolean VexaUtilArgListAppendInt(ArgList_s* argList, const char* name, long value);
/// Appends the address of a double. A query stores its result there, so the double must outlive the list. Returns 1 on
/// success.
VEXA_HOST_API VexaBoolean VexaUtilArgListAppendDoublePtr(ArgList_s* argList, const char* name, double* value);
/// Appends the address of a value. A query stores its result there, so the value must outlive the list. Returns 1 on
/// success.
VEXA_HOST_API VexaBoolean VexaUtilArgListAppendArbParamPtr(ArgList_s* argList, const char* name, VexaArbParam* value);

/// Reads one style value. The list has the strings "P1" to "P6" (the path, outermost first), the optional integers
/// "Offset1" and "Offset2", and either "DValue" (for a double) or "IValue" (for any other type).
VEXA_HOST_API GetValueReturnCode_e VexaUtilStyleGetLowLevelX(ArgList_s* argList);

/// Shows \p message in the host's error dialog. Returns after the user has closed the dialog.
VEXA_HOST_API void VexaUtilDialogErrMsg(const char* message);

/// Creates an empty set.
VEXA_HOST_API Set_s* VexaUtilSetAlloc(void);
/// Frees a set and sets the handle at \p set to null.
VEXA_HOST_API void VexaUtilSetDealloc(Set_s** set);
/// Adds the members from \p first to \p last. Neither may be negative, and \p last must not be less than \p first.
/// Returns 1 on success.
VEXA_HOST_API VexaBoolean VexaUtilSetInsert(Set_s* set, int64_t first, int64_t last);
/// Finds the lowest run of consecutive members whose last member is \p from or greater. Stores the first and the last
/// member of the whole run in \p first and \p last, and returns 1. If there is no such run, returns 0 and changes
/// neither output.
VEXA_HOST_API VexaBoolean VexaUtilSetNextRange(const Set_s* set, int64_t from, int64_t* first, int64_t* last);

#ifdef __cplusplus
}
#endif
