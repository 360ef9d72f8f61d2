#pragma once

#include <string>

#include "commands/check/CheckReport.h"

namespace vexa::runner {

/// A check for other programs, in a form of our own; docs/check.md describes it.
std::string jsonText(const CheckReport& report);

/// The same for build servers that show the tests of JUnit.
std::string junitText(const CheckReport& report);

/// What did not pass for tools that read SARIF 2.1.0.
std::string sarifText(const CheckReport& report);

}  // namespace vexa::runner
