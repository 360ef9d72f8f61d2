#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "vexa/Export.h"

namespace vexa::foreign {

/// Lists the calls of this thread's scanners while the object exists: "hasNextToken", "nextToken ]".
///
/// After \p most calls, the next one throws TooManyCalls. Recording a call allocates no memory. Only one object may
/// exist at a time.
class FOREIGN_API ScannerCalls {
public:
    explicit ScannerCalls(std::size_t most = 100);
    ScannerCalls(const ScannerCalls&) = delete;
    ScannerCalls& operator=(const ScannerCalls&) = delete;
    ~ScannerCalls();

    /// Returns the calls so far.
    std::vector<std::string> all() const;

    /// Records a call. Scanners call it.
    static void add(const char* operation, char argument = '\0');

private:
    std::size_t m_most;
    std::vector<std::pair<const char*, char>> m_calls;
};

/// A scanner's operation throws it to end an endless loop of its caller.
struct FOREIGN_API TooManyCalls {};

/// The character that Scanner::nextChar() returns at the end of a text, in this thread. At first it is '=', which a
/// getter would take for a part of the text.
FOREIGN_API void setCharacterAtEnd(char c);

}  // namespace vexa::foreign
