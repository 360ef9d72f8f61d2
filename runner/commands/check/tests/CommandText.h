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

/// Texts that no add-on expects, whatever its commands are.
std::vector<DamagedText> strangeTexts();
/// The command \p text, damaged in every way that has a name. \p text has no NUL byte.
std::vector<DamagedText> damaged(const std::string& text);
/// \p text, damaged in a few random places. \p text has no NUL byte.
std::string damagedAtRandom(std::string text, std::mt19937_64& random);

}  // namespace vexa::runner
