#pragma once

#include <random>
#include <string>
#include <vector>

namespace vexa::runner {

/// A damaged command text.
struct DamagedText {
    std::string how;  ///< what is damaged, for example "cut after byte 7"
    std::string text;
};

/// Returns texts that no add-on expects.
std::vector<DamagedText> strangeTexts();
/// Returns the command \p text with each systematic damage. \p text must not have a NUL byte.
std::vector<DamagedText> damaged(const std::string& text);
/// Returns \p text with damage in a few random places. \p text must not have a NUL byte.
std::string damagedAtRandom(std::string text, std::mt19937_64& random);

}  // namespace vexa::runner
