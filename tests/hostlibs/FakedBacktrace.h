#pragma once

namespace vexa::tests {

/// The results that the C library's backtrace functions can be made to return.
enum class Backtrace {
    Real,
    OfAnother,    ///< one frame, which is not the caller's
    WithoutNames  ///< the real frames, but no memory for their names
};

/// Sets the result while the object exists. The program must compile FakedBacktrace.cpp, which replaces the functions
/// of the C library.
class FakedBacktrace {
public:
    explicit FakedBacktrace(Backtrace answer);
    FakedBacktrace(const FakedBacktrace&) = delete;
    FakedBacktrace& operator=(const FakedBacktrace&) = delete;
    ~FakedBacktrace();
};

}  // namespace vexa::tests
