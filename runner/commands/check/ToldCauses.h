#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "commands/check/trial/CheckTest.h"

namespace vexa::runner {

/// Decides what a check prints about a test. One mistake of an add-on often makes many tests fail, so each cause is
/// printed only once.
///
/// A cause is a breach of a rule by a command, the message of a failed command, or the way in which a command ended the
/// process. Causes that differ only in the place in a macro, or in the number of earlier host calls, are equal.
class ToldCauses {
public:
    /// The text to print about a test.
    struct Told {
        std::string text;    ///< lines; may be empty
        bool isNew = false;  ///< true if the test has a cause that no earlier test had
    };

    /// Returns what to print about a test with this verdict. Its reason must be printable.
    Told tell(const std::string& test, const Verdict& verdict);

    /// Returns a line for each cause that several tests had.
    std::string summary() const;

private:
    struct Cause {
        std::string key;  // equal for equal causes
        std::string headline;
        std::string firstTest;
        std::size_t tests = 0;
    };

    std::vector<Cause> m_causes;  // in the order in which they were printed
};

}  // namespace vexa::runner
