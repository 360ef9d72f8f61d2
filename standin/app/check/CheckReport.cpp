#include "check/CheckReport.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace vexa::runner {
namespace {

constexpr std::array<const char*, 6> kNames = {"passed", "warned", "skipped", "failed", "crashed", "timed out"};

bool isIn(unsigned char byte, unsigned first, unsigned last) { return byte >= first && byte <= last; }

// The length of the printable character that `text` begins with; 0 when it begins with none. Left out are the control
// characters, overlong forms, surrogates, what is beyond the last character, and the two that XML has not.
std::size_t lengthOfCharacter(std::string_view text) {
    const auto byte = [&](std::size_t i) -> unsigned char {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : '\0';
    };
    const auto continues = [&](std::size_t i) { return isIn(byte(i), 0x80, 0xBF); };
    const unsigned char first = byte(0);
    const unsigned char second = byte(1);
    if (first == '\n' || isIn(first, 0x20, 0x7E)) return 1;
    if (isIn(first, 0xC2, 0xDF)) return continues(1) && !(first == 0xC2 && second < 0xA0) ? 2 : 0;
    if (isIn(first, 0xE0, 0xEF)) {
        const bool isRefused = (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
                               (first == 0xEF && second == 0xBF && byte(2) >= 0xBE);
        return continues(1) && continues(2) && !isRefused ? 3 : 0;
    }
    const bool isRefused = (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
    return isIn(first, 0xF0, 0xF4) && continues(1) && continues(2) && continues(3) && !isRefused ? 4 : 0;
}

}  // namespace

const char* nameOf(Outcome_e outcome) { return kNames[static_cast<std::size_t>(outcome)]; }

bool isBad(Outcome_e outcome, bool warningsAsErrors) {
    return outcome > Outcome_e::Skipped || (warningsAsErrors && outcome == Outcome_e::Warned);
}

bool isPassed(const CheckReport& report) {
    const auto is = [&](const auto& has) { return std::any_of(report.tests.begin(), report.tests.end(), has); };
    return is([](const ReportedTest& test) { return test.result.verdict.outcome <= Outcome_e::Warned; }) &&
           !is([&](const ReportedTest& test) { return isBad(test.result.verdict.outcome, report.warningsAsErrors); });
}

std::string countsText(const CheckReport& report) {
    std::string text;
    for (std::size_t i = 0; i != kNames.size(); ++i) {
        const auto count = std::count_if(report.tests.begin(), report.tests.end(), [&](const ReportedTest& test) {
            return test.result.verdict.outcome == static_cast<Outcome_e>(i);
        });
        if (count > 0) text += (text.empty() ? "" : ", ") + std::to_string(count) + ' ' + kNames[i];
    }
    return text;
}

std::string printable(const std::string& text) {
    std::string shown;
    std::string_view left = text;
    while (!left.empty()) {
        const std::size_t length = lengthOfCharacter(left);
        if (length == 0) {
            std::array<char, 5> escape{};
            std::snprintf(escape.data(), escape.size(), "\\x%02X", static_cast<unsigned char>(left.front()));
            shown += escape.data();
        } else {
            shown += left.substr(0, length);
        }
        left.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return shown;
}

}  // namespace vexa::runner
