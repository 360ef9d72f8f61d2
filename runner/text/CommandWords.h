#pragma once

#include <string>
#include <vector>

namespace vexa::runner {

/// The parts of a command's text if it has the usual form: a word, and options after it. An add-on may read its
/// commands in another way, so the parts are only a guess.
///
///     LOAD FILE = 'a b' COLUMNS=[1-3] FAST      the word LOAD, and FILE = 'a b', COLUMNS = [1-3], FAST
struct CommandWords {
    struct Option {
        std::string name;
        std::string value;  ///< as written, with its quotes; empty if there is none
    };

    explicit CommandWords(const std::string& text);

    /// Returns the text again, with single blanks.
    std::string text() const;

    std::string word;
    std::vector<Option> options;
};

}  // namespace vexa::runner
