#include "FailingStreams.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

namespace vexa::tests {
namespace {

StreamCall failingCall = StreamCall::None;
bool failed = false;
long streams = 0;
long reads = 0;

bool fails(StreamCall call, int reason = EIO) {
    if (failingCall != call) return false;
    failed = true;
    errno = reason;
    return true;
}

// Returns the C library's function `name`.
template <class Function>
Function* original(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

FILE* counted(FILE* stream) {
    if (stream != nullptr) ++streams;
    return stream;
}

}  // namespace

FailingStream::FailingStream(StreamCall call) {
    failingCall = call;
    failed = false;
}

FailingStream::~FailingStream() { failingCall = StreamCall::None; }

bool FailingStream::hasFailed() { return failed; }

long openStreams() { return streams; }

long readCalls() { return reads; }

}  // namespace vexa::tests

using namespace vexa::tests;

// The libraries of the process must use these functions, even if the build hides names by default.
#pragma GCC visibility push(default)

extern "C" {

FILE* fopen(const char* path, const char* mode) {
    if (fails(StreamCall::Open)) return nullptr;
    return counted(original<FILE*(const char*, const char*)>("fopen")(path, mode));
}

// The C++ library's file streams call this one.
FILE* fopen64(const char* path, const char* mode) {
    return counted(original<FILE*(const char*, const char*)>("fopen64")(path, mode));
}

int fclose(FILE* stream) {
    --streams;
    const int result = original<int(FILE*)>("fclose")(stream);
    errno = ECANCELED;  // a successful call may change errno
    return fails(StreamCall::Close) ? EOF : result;
}

int rename(const char* from, const char* to) {
    if (fails(StreamCall::Rename)) return -1;
    return original<int(const char*, const char*)>("rename")(from, to);
}

int remove(const char* path) {
    if (fails(StreamCall::Remove)) return -1;
    return original<int(const char*)>("remove")(path);
}

int stat(const char* path, struct stat* status) {
    if (fails(StreamCall::Stat)) return -1;
    return original<int(const char*, struct stat*)>("stat")(path, status);
}

// Boost calls this one.
int stat64(const char* path, struct stat64* status) {
    if (fails(StreamCall::Stat)) return -1;
    return original<int(const char*, struct stat64*)>("stat64")(path, status);
}

int fseeko(FILE* stream, off_t offset, int origin) {
    if (fails(origin == SEEK_END ? StreamCall::SeekToEnd : StreamCall::SeekToBegin)) return -1;
    return original<int(FILE*, off_t, int)>("fseeko")(stream, offset, origin);
}

off_t ftello(FILE* stream) {
    if (fails(StreamCall::Tell)) return -1;
    return original<off_t(FILE*)>("ftello")(stream);
}

std::size_t fread(void* buffer, std::size_t size, std::size_t count, FILE* stream) {
    ++reads;
    if (fails(StreamCall::FailedRead, kReadFailure)) return 0;
    const std::size_t got =
        original<std::size_t(void*, std::size_t, std::size_t, FILE*)>("fread")(buffer, size, count, stream);
    return fails(StreamCall::ShortRead, 0) ? got - 1 : got;
}

int ferror(FILE* stream) {
    if (failingCall == StreamCall::FailedRead && failed) return 1;
    return original<int(FILE*)>("ferror")(stream);
}

}  // extern "C"

#pragma GCC visibility pop
