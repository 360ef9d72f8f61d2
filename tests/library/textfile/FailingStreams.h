#pragma once

#include <cerrno>

namespace vexa::tests {

/// The functions on streams and files that can be made to fail. Close fails as it does for a disk that is full: the
/// stream is closed. Stat is that of the library and of Boost.
enum class StreamCall { None, SeekToEnd, SeekToBegin, Tell, ShortRead, FailedRead, Open, Close, Rename, Remove, Stat };

/// The reason that a FailedRead leaves in `errno`. A ShortRead leaves none.
constexpr int kReadFailure = ESTALE;

/// Lets one of these functions fail with EIO, from construction to destruction. Works in programs that compile
/// FailingStreams.cpp, which stands between them and the C library.
class FailingStream {
public:
    explicit FailingStream(StreamCall call);
    FailingStream(const FailingStream&) = delete;
    FailingStream& operator=(const FailingStream&) = delete;
    ~FailingStream();

    /// Whether the call was made, and failed.
    static bool hasFailed();
};

/// The streams opened and not yet closed.
long openStreams();
/// The calls of `fread` so far.
long readCalls();

}  // namespace vexa::tests
