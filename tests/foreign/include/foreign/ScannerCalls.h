#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "vexa/Export.h"

namespace vexa::foreign {

/// Lists the calls of this thread's scanners from construction to destruction: "hasNextToken", "nextToken ]".
///
/// The call after the \p most first ones throws TooManyCalls. Recording allocates nothing between construction and
/// destruction. One at a time.
class FOREIGN_API ScannerCalls {
public:
    explicit ScannerCalls(std::size_t most = 100);
    ScannerCalls(const ScannerCalls&) = delete;
    ScannerCalls& operator=(const ScannerCalls&) = delete;
    ~ScannerCalls();

    /// The calls so far.
    std::vector<std::string> all() const;

    /// Called by scanners.
    static void add(const char* operation, char argument = '\0');

private:
    std::size_t m_most;
    std::vector<std::pair<const char*, char>> m_calls;
};

/// Thrown by a scanner's operation, to end an endless loop around it.
struct FOREIGN_API TooManyCalls {};

/// What Scanner::nextChar() returns at the end of a text, in this thread: '=' at first, which a getter would most
/// gladly take for real.
FOREIGN_API void setCharacterAtEnd(char c);

}  // namespace vexa::foreign
