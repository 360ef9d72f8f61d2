#pragma once

#include <string>
#include <utility>
#include <vector>

namespace vexa::runner {

/// What JUnit makes of a test case.
enum class JunitOutcome_e {
    Passed,
    Remarked,  ///< passed, and there is something to tell
    Skipped,
    Failure,
    Error,  ///< the test itself came to no good
};

/// A test case of a report.
struct JunitCase {
    std::string className;
    std::string name;
    double seconds = 0;
    JunitOutcome_e outcome = JunitOutcome_e::Passed;
    std::string type;     ///< of a failure or an error
    std::string message;  ///< a line, of what did not pass
    std::string text;     ///< all there is to tell
};

/// A report for build servers that show the tests of JUnit. What cannot be printed stands as `\xHH`.
/// \param properties names and values
std::string junitText(const std::string& suite, const std::vector<std::pair<std::string, std::string>>& properties,
                      const std::vector<JunitCase>& cases);

}  // namespace vexa::runner
