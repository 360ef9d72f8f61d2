#pragma once

namespace vexa::tests {

/// What the C library's functions about the stack can be made to answer.
enum class Backtrace {
    Real,
    OfAnother,    ///< one frame, in which nobody called
    WithoutNames  ///< frames as they are, but no memory for their names
};

/// Sets the answer, from construction to destruction. Works in programs that compile FakedBacktrace.cpp, which stands
/// between them and the C library.
class FakedBacktrace {
public:
    explicit FakedBacktrace(Backtrace answer);
    FakedBacktrace(const FakedBacktrace&) = delete;
    FakedBacktrace& operator=(const FakedBacktrace&) = delete;
    ~FakedBacktrace();
};

}  // namespace vexa::tests
