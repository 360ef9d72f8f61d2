#pragma once

#include <optional>
#include <string>
#include <vector>

#include "vexastandin/HostFacts.h"

namespace vexa::runner {

/// A fact of a facts file.
struct HostFact {
    std::string name;      ///< for example "list.append.sameNameTwice"
    std::string question;  ///< in words; may be empty
    std::string answer;    ///< `true`, `false`, a number or a word; empty if there is no answer
    std::string reason;    ///< why there is no answer; may be empty

    bool isAnswered() const { return !answer.empty(); }
};

/// Reads the text of a facts file, which the probe writes: JSON with the facts by their names.
///
///     {"schema": 1, "probe": "1.0.0",
///      "facts": {"state.batch": {"question": "Is batch mode active?", "answer": false},
///                "lock.nests": {"question": "Does it return?", "answer": null, "reason": "not asked"}}}
///
/// \return the facts in the order of the file.
/// \throws JsonError if the text has another form, or a fact twice. Members with other names may be there.
std::vector<HostFact> parseHostFacts(const std::string& text);

/// Reads a facts file. Reports an error as "FILE:LINE:COLUMN: no facts file: reason", or "FILE: reason".
/// \return nothing if there was an error.
std::optional<std::vector<HostFact>> readHostFacts(const std::string& file);

/// The answers among \p facts.
standin::HostFacts answersOf(const std::vector<HostFact>& facts);

}  // namespace vexa::runner
