// Replaces the functions of the C library that change files, for the program and its add-ons: the loader finds these
// functions first. They call the C library's functions, and count the changes that a confinement refused.

// Otherwise the library's headers define checked variants of the same functions.
#undef _FORTIFY_SOURCE

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "commands/check/trial/Confinement.h"

using vexa::runner::Confinement;

namespace {

bool isFailure(int result) { return result < 0; }
bool isFailure(const void* result) { return result == nullptr; }

bool isForWriting(int flags) { return (flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_TRUNC)) != 0; }
bool isForWriting(const char* mode) { return std::strpbrk(mode, "wa+") != nullptr; }

// Counts only changes. If a file cannot be opened for reading, the reason is its permissions, not the confinement.
template <class Result>
Result counted(Result result, bool isChange) noexcept {
    const int error = errno;
    if (isChange && isFailure(result)) Confinement::noteFailure(error);
    errno = error;
    return result;
}

mode_t modeOf(int flags, va_list arguments) {
    const bool hasMode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return hasMode ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

// The next function of this name, which is the C library's.
// NOLINTNEXTLINE(bugprone-macro-parentheses): a type cannot stand in parentheses
#define VEXA_NEXT(function) static const auto next = reinterpret_cast<decltype(&function)>(dlsym(RTLD_NEXT, #function))

// Defines a function that calls the next one. `isChange` says whether the call asks for a change.
#define VEXA_CALL(type, function, parameters, arguments, isChange)    \
    type function parameters noexcept(noexcept(function arguments)) { \
        VEXA_NEXT(function);                                          \
        return counted(next arguments, isChange);                     \
    }

// Does the same for functions that open files. They take a mode only if they create the file.
#define VEXA_OPEN(function, parameters, arguments)           \
    int function parameters {                                \
        VEXA_NEXT(function);                                 \
        va_list optional;                                    \
        va_start(optional, flags);                           \
        const mode_t mode = modeOf(flags, optional);         \
        va_end(optional);                                    \
        return counted(next arguments, isForWriting(flags)); \
    }

// NOLINTBEGIN(cert-dcl50-cpp,bugprone-reserved-identifier,readability-inconsistent-declaration-parameter-name)
#pragma GCC visibility push(default)
extern "C" {
// Programs that are built with the library's checks call these functions instead of open().
int __open_2(const char* path, int flags);
int __open64_2(const char* path, int flags);
int __openat_2(int folder, const char* path, int flags);
int __openat64_2(int folder, const char* path, int flags);

VEXA_OPEN(open, (const char* path, int flags, ...), (path, flags, mode))
VEXA_OPEN(open64, (const char* path, int flags, ...), (path, flags, mode))
VEXA_OPEN(openat, (int folder, const char* path, int flags, ...), (folder, path, flags, mode))
VEXA_OPEN(openat64, (int folder, const char* path, int flags, ...), (folder, path, flags, mode))

VEXA_CALL(int, __open_2, (const char* path, int flags), (path, flags), isForWriting(flags))
VEXA_CALL(int, __open64_2, (const char* path, int flags), (path, flags), isForWriting(flags))
VEXA_CALL(int, __openat_2, (int folder, const char* path, int flags), (folder, path, flags), isForWriting(flags))
VEXA_CALL(int, __openat64_2, (int folder, const char* path, int flags), (folder, path, flags), isForWriting(flags))
VEXA_CALL(FILE*, fopen, (const char* path, const char* mode), (path, mode), isForWriting(mode))
VEXA_CALL(FILE*, fopen64, (const char* path, const char* mode), (path, mode), isForWriting(mode))
VEXA_CALL(FILE*, freopen, (const char* path, const char* mode, FILE* old), (path, mode, old), isForWriting(mode))
VEXA_CALL(FILE*, freopen64, (const char* path, const char* mode, FILE* old), (path, mode, old), isForWriting(mode))
VEXA_CALL(int, creat, (const char* path, mode_t mode), (path, mode), true)
VEXA_CALL(int, creat64, (const char* path, mode_t mode), (path, mode), true)
VEXA_CALL(int, truncate, (const char* path, off_t size), (path, size), true)
VEXA_CALL(int, truncate64, (const char* path, off64_t size), (path, size), true)
VEXA_CALL(int, mkdir, (const char* path, mode_t mode), (path, mode), true)
VEXA_CALL(int, mkdirat, (int folder, const char* path, mode_t mode), (folder, path, mode), true)
VEXA_CALL(int, mkfifo, (const char* path, mode_t mode), (path, mode), true)
VEXA_CALL(int, rename, (const char* from, const char* to), (from, to), true)
VEXA_CALL(int, renameat, (int from, const char* old, int to, const char* path), (from, old, to, path), true)
VEXA_CALL(int, renameat2, (int from, const char* old, int to, const char* path, unsigned flags),
          (from, old, to, path, flags), true)
VEXA_CALL(int, link, (const char* from, const char* to), (from, to), true)
VEXA_CALL(int, linkat, (int from, const char* old, int to, const char* path, int flags), (from, old, to, path, flags),
          true)
VEXA_CALL(int, symlink, (const char* target, const char* path), (target, path), true)
VEXA_CALL(int, symlinkat, (const char* target, int folder, const char* path), (target, folder, path), true)
VEXA_CALL(int, unlink, (const char* path), (path), true)
VEXA_CALL(int, unlinkat, (int folder, const char* path, int flags), (folder, path, flags), true)
VEXA_CALL(int, rmdir, (const char* path), (path), true)
VEXA_CALL(int, remove, (const char* path), (path), true)
}
#pragma GCC visibility pop
// NOLINTEND(cert-dcl50-cpp,bugprone-reserved-identifier,readability-inconsistent-declaration-parameter-name)
