#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace vexa::runner {

/// What is damaged about a command text, and the result.
struct DamagedText {
    std::string how;  ///< for people, for example "cut behind byte 7"
    std::string text;
};

/// The text of a command taken apart, as far as it looks like one: a word, and options behind it.
///
///     LOAD FILE = 'a b' COLUMNS=[1-3] FAST      the word LOAD, and FILE = 'a b', COLUMNS = [1-3], FAST
struct CommandText {
    struct Option {
        std::string name;
        std::string value;  ///< as written, with its quotes; empty when there is none
    };

    explicit CommandText(const std::string& text);
    /// The text again, with single blanks.
    std::string text() const;

    std::string word;
    std::vector<Option> options;
};

/// Texts that no add-on expects, whatever its commands are.
std::vector<DamagedText> strangeTexts();
/// The command \p text, damaged in every way there is a name for. It has no NUL byte in it.
std::vector<DamagedText> damaged(const std::string& text);
/// \p text damaged somewhere, a few times. It has no NUL byte in it.
std::string damagedAtRandom(std::string text, std::mt19937_64& random);

}  // namespace vexa::runner
