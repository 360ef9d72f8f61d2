#include "FailingStreams.h"

#include <dlfcn.h>

#include <cerrno>
#include <cstdio>

namespace vexa::tests {
namespace {

StreamCall failing = StreamCall::None;
bool failed = false;
long streams = 0;
long reads = 0;

bool fails(StreamCall call) {
    if (failing != call) return false;
    failed = true;
    errno = EIO;
    return true;
}

// The C library's function of that name.
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
    failing = call;
    failed = false;
}

FailingStream::~FailingStream() { failing = StreamCall::None; }

bool FailingStream::hasFailed() { return failed; }

long openStreams() { return streams; }

long readCalls() { return reads; }

}  // namespace vexa::tests

using namespace vexa::tests;

// Seen by the libraries of the process, whatever visibility this build defaults to.
#pragma GCC visibility push(default)

extern "C" {

FILE* fopen(const char* path, const char* mode) {
    return counted(original<FILE*(const char*, const char*)>("fopen")(path, mode));
}

// The standard library's file streams open theirs by this one.
FILE* fopen64(const char* path, const char* mode) {
    return counted(original<FILE*(const char*, const char*)>("fopen64")(path, mode));
}

int fclose(FILE* stream) {
    --streams;
    return original<int(FILE*)>("fclose")(stream);
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
    if (fails(StreamCall::FailedRead)) return 0;
    const std::size_t got =
        original<std::size_t(void*, std::size_t, std::size_t, FILE*)>("fread")(buffer, size, count, stream);
    return fails(StreamCall::ShortRead) ? got - 1 : got;
}

}  // extern "C"

#pragma GCC visibility pop
