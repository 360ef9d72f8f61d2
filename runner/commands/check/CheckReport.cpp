#include "commands/check/CheckReport.h"

#include <algorithm>
#include <array>

namespace vexa::runner {
namespace {

constexpr std::array<const char*, 6> kNames = {"passed", "warned", "skipped", "failed", "crashed", "timed out"};

}  // namespace

const char* nameOf(Outcome_e outcome) { return kNames[static_cast<std::size_t>(outcome)]; }

bool isBad(Outcome_e outcome, bool warningsAsErrors) {
    return outcome > Outcome_e::Skipped || (warningsAsErrors && outcome == Outcome_e::Warned);
}

bool isPassed(const CheckReport& report) {
    const std::vector<TestResult>& tests = report.tests;
    const auto hasRun = [](const TestResult& test) { return test.verdict.outcome <= Outcome_e::Warned; };
    const auto isWrong = [&](const TestResult& test) { return isBad(test.verdict.outcome, report.warningsAsErrors); };
    return std::any_of(tests.begin(), tests.end(), hasRun) && std::none_of(tests.begin(), tests.end(), isWrong);
}

std::string countsText(const CheckReport& report) {
    std::string text;
    for (std::size_t i = 0; i != kNames.size(); ++i) {
        const auto count = std::count_if(report.tests.begin(), report.tests.end(), [&](const TestResult& test) {
            return test.verdict.outcome == static_cast<Outcome_e>(i);
        });
        if (count > 0) text += (text.empty() ? "" : ", ") + std::to_string(count) + ' ' + kNames[i];
    }
    return text;
}

std::size_t refusedWrites(const CheckReport& report) {
    std::size_t count = 0;
    for (const TestResult& test : report.tests) count += test.refusedWrites;
    return count;
}

}  // namespace vexa::runner
