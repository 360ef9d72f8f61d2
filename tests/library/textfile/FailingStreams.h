#pragma once

#include <cerrno>

namespace vexa::tests {

/// The functions on streams and files that a test can make fail. If Close fails, the stream is closed all the same, as
/// on a full disk. Stat fails for the library and for Boost.
enum class StreamCall { None, SeekToEnd, SeekToBegin, Tell, ShortRead, FailedRead, Open, Close, Rename, Remove, Stat };

/// The value that a FailedRead sets in `errno`. A ShortRead sets none.
constexpr int kReadFailure = ESTALE;

/// Makes one of these functions fail with EIO while the object exists. The program must compile FailingStreams.cpp,
/// which replaces the functions of the C library.
class FailingStream {
public:
    explicit FailingStream(StreamCall call);
    FailingStream(const FailingStream&) = delete;
    FailingStream& operator=(const FailingStream&) = delete;
    ~FailingStream();

    /// Returns true if the program called the function and the call failed.
    static bool hasFailed();
};

/// Returns the number of open streams.
long openStreams();
/// Returns the number of calls of `fread` so far.
long readCalls();

}  // namespace vexa::tests
