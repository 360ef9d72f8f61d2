// The functions of the C library that change files, for the whole program and its add-ons: the loader finds these
// first. They call the library's, and count what a confinement refused.

// The library's own checked variants would be defined twice.
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

template <class Result>
Result counted(Result result) noexcept {
    const int error = errno;
    if (isFailure(result)) Confinement::noteFailure(error);
    errno = error;
    return result;
}

bool isForWriting(int flags) { return (flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_TRUNC)) != 0; }
bool isForWriting(const char* mode) { return std::strpbrk(mode, "wa+") != nullptr; }

// Opening for reading is refused by permissions only.
template <class Result, class Mode>
Result opened(Result result, Mode mode) noexcept {
    return isForWriting(mode) ? counted(result) : result;
}

mode_t modeOf(int flags, va_list arguments) {
    const bool hasMode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return hasMode ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

// The function that would have been called but for the one here.
// NOLINTNEXTLINE(bugprone-macro-parentheses): a type cannot stand in them
#define VEXA_NEXT(function) static const auto next = reinterpret_cast<decltype(&function)>(dlsym(RTLD_NEXT, #function))

#define VEXA_OPEN(function)                            \
    int function(const char* path, int flags, ...) {   \
        VEXA_NEXT(function);                           \
        va_list arguments;                             \
        va_start(arguments, flags);                    \
        const mode_t mode = modeOf(flags, arguments);  \
        va_end(arguments);                             \
        return opened(next(path, flags, mode), flags); \
    }

#define VEXA_OPENAT(function)                                    \
    int function(int folder, const char* path, int flags, ...) { \
        VEXA_NEXT(function);                                     \
        va_list arguments;                                       \
        va_start(arguments, flags);                              \
        const mode_t mode = modeOf(flags, arguments);            \
        va_end(arguments);                                       \
        return opened(next(folder, path, flags, mode), flags);   \
    }

#define VEXA_FOPEN(function)                             \
    FILE* function(const char* path, const char* mode) { \
        VEXA_NEXT(function);                             \
        return opened(next(path, mode), mode);           \
    }

#define VEXA_FREOPEN(function)                                      \
    FILE* function(const char* path, const char* mode, FILE* old) { \
        VEXA_NEXT(function);                                        \
        return opened(next(path, mode, old), mode);                 \
    }

// NOLINTBEGIN(cert-dcl50-cpp,bugprone-reserved-identifier,readability-inconsistent-declaration-parameter-name)
#pragma GCC visibility push(default)
extern "C" {
// What the library calls for open() in programs that are built with its checks.
int __open_2(const char* path, int flags);
int __open64_2(const char* path, int flags);
int __openat_2(int folder, const char* path, int flags);
int __openat64_2(int folder, const char* path, int flags);

int __open_2(const char* path, int flags) {
    VEXA_NEXT(__open_2);
    return opened(next(path, flags), flags);
}
int __open64_2(const char* path, int flags) {
    VEXA_NEXT(__open64_2);
    return opened(next(path, flags), flags);
}
int __openat_2(int folder, const char* path, int flags) {
    VEXA_NEXT(__openat_2);
    return opened(next(folder, path, flags), flags);
}
int __openat64_2(int folder, const char* path, int flags) {
    VEXA_NEXT(__openat64_2);
    return opened(next(folder, path, flags), flags);
}

VEXA_OPEN(open)
VEXA_OPEN(open64)
VEXA_OPENAT(openat)
VEXA_OPENAT(openat64)
VEXA_FOPEN(fopen)
VEXA_FOPEN(fopen64)
VEXA_FREOPEN(freopen)
VEXA_FREOPEN(freopen64)

int creat(const char* path, mode_t mode) {
    VEXA_NEXT(creat);
    return counted(next(path, mode));
}
int creat64(const char* path, mode_t mode) {
    VEXA_NEXT(creat64);
    return counted(next(path, mode));
}
int truncate(const char* path, off_t size) noexcept {
    VEXA_NEXT(truncate);
    return counted(next(path, size));
}
int truncate64(const char* path, off64_t size) noexcept {
    VEXA_NEXT(truncate64);
    return counted(next(path, size));
}
int mkdir(const char* path, mode_t mode) noexcept {
    VEXA_NEXT(mkdir);
    return counted(next(path, mode));
}
int mkdirat(int folder, const char* path, mode_t mode) noexcept {
    VEXA_NEXT(mkdirat);
    return counted(next(folder, path, mode));
}
int mkfifo(const char* path, mode_t mode) noexcept {
    VEXA_NEXT(mkfifo);
    return counted(next(path, mode));
}
int rename(const char* from, const char* to) noexcept {
    VEXA_NEXT(rename);
    return counted(next(from, to));
}
int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    VEXA_NEXT(renameat);
    return counted(next(fromFolder, from, toFolder, to));
}
int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
    VEXA_NEXT(renameat2);
    return counted(next(fromFolder, from, toFolder, to, flags));
}
int link(const char* from, const char* to) noexcept {
    VEXA_NEXT(link);
    return counted(next(from, to));
}
int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
    VEXA_NEXT(linkat);
    return counted(next(fromFolder, from, toFolder, to, flags));
}
int symlink(const char* target, const char* path) noexcept {
    VEXA_NEXT(symlink);
    return counted(next(target, path));
}
int symlinkat(const char* target, int folder, const char* path) noexcept {
    VEXA_NEXT(symlinkat);
    return counted(next(target, folder, path));
}
int unlink(const char* path) noexcept {
    VEXA_NEXT(unlink);
    return counted(next(path));
}
int unlinkat(int folder, const char* path, int flags) noexcept {
    VEXA_NEXT(unlinkat);
    return counted(next(folder, path, flags));
}
int rmdir(const char* path) noexcept {
    VEXA_NEXT(rmdir);
    return counted(next(path));
}
int remove(const char* path) noexcept {
    VEXA_NEXT(remove);
    return counted(next(path));
}
}
#pragma GCC visibility pop
// NOLINTEND(cert-dcl50-cpp,bugprone-reserved-identifier,readability-inconsistent-declaration-parameter-name)
