#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "commands/check/trial/CheckTest.h"

namespace vexa::runner {

/// What a check prints about its tests. One mistake of an add-on often makes many tests fail, so each cause is printed
/// once.
///
/// A cause is a breach of a rule by a command, the message of a failed command, or the way in which a command ended the
/// process. The place in a macro and the number of host calls before do not distinguish causes.
class ToldCauses {
public:
    /// What is printed about a test.
    struct Told {
        std::string text;    ///< lines; empty for nothing
        bool isNew = false;  ///< whether it has a cause that no earlier test had
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

    std::vector<Cause> m_causes;  // in the order in which they were told
};

}  // namespace vexa::runner
