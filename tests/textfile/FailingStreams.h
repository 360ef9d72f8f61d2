#pragma once

namespace vexa::tests {

/// The stream functions that can be made to fail.
enum class StreamCall { None, SeekToEnd, SeekToBegin, Tell, ShortRead, FailedRead };

/// Lets one stream function fail, from construction to destruction. Works in programs that compile
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
