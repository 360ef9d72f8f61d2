#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "commands/check/trial/CheckTest.h"

namespace vexa::runner {

/// What a check tells of its tests, each cause once: a mistake of an add-on shows in test after test.
///
/// A cause is a breach of a rule by a command, a message of a failed command, or a way in which a command ended the
/// process. Where it lies and how often the host was called before makes no other cause of it.
class ToldCauses {
public:
    /// What is told of a test.
    struct Told {
        std::string text;    ///< lines; empty when there is nothing
        bool isNew = false;  ///< whether there is a cause in it that no test before had
    };

    /// What to tell of a test that came out as \p verdict, whose reason is printable.
    Told tell(const std::string& test, const Verdict& verdict);

    /// A line for each cause that several tests had.
    std::string summary() const;

private:
    struct Cause {
        std::string key;  // equal for equal causes
        std::string headline;
        std::string firstTest;
        std::size_t tests = 0;
    };
    // A cause, or what was going on then: some lines of a reason.
    struct Part {
        std::string text;
        std::string key = {};       // that of its cause; empty for what is no cause
        std::string headline = {};  // of a cause
    };

    static std::vector<Part> partsOf(const Verdict& verdict);

    std::vector<Cause> m_causes;  // in the order in which they were told
};

}  // namespace vexa::runner
