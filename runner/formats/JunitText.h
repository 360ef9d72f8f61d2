#pragma once

#include <string>
#include <utility>
#include <vector>

namespace vexa::runner {

/// The outcome of a test case, as JUnit names it.
enum class JunitOutcome_e {
    Passed,
    Remarked,  ///< the test passed, and has a text
    Skipped,
    Failure,
    Error,  ///< the test could not finish
};

/// A test case of a report.
struct JunitCase {
    std::string className;
    std::string name;
    double seconds = 0;
    JunitOutcome_e outcome = JunitOutcome_e::Passed;
    std::string type;     ///< the type of a failure or an error
    std::string message;  ///< one line, if the test did not pass
    std::string text;     ///< the whole text
};

/// Returns a JUnit report for build servers. Bytes that cannot be printed are written as `\xHH`.
/// \param properties names and values
std::string junitText(const std::string& suite, const std::vector<std::pair<std::string, std::string>>& properties,
                      const std::vector<JunitCase>& cases);

}  // namespace vexa::runner
