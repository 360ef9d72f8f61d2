#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "facts/Facts.h"
#include "probe/questions/Answer.h"

namespace vexa::probe {

/// The shutdown of an add-on, as long as its order is not known.
struct Shutdown {
    long process;           ///< the process in which it happened
    std::int64_t loadedAt;  ///< when the add-on was loaded; the process compares such times only
};

/// The facts about a host, as they are in a file. docs/real-host.md describes the format.
class FactsFile {
public:
    /// Reads the file at \p path. If there is none, no fact has an answer.
    /// \throws std::runtime_error "PATH: cannot be read: " and the reason, also if the file is no facts file.
    explicit FactsFile(std::string path);

    /// The answer to \p fact, or why it has none.
    const Answer& answerTo(facts::Fact fact) const { return m_answers[static_cast<std::size_t>(fact)]; }
    bool isAnswered(facts::Fact fact) const { return !std::holds_alternative<NoAnswer>(answerTo(fact)); }
    void set(facts::Fact fact, Answer answer) { m_answers[static_cast<std::size_t>(fact)] = std::move(answer); }

    std::vector<Shutdown> shutdowns;

    /// Writes the file as a whole.
    /// \throws std::runtime_error as replaceFile() does.
    void write() const;

private:
    class Reader;

    void read(const std::string& text);

    std::string m_path;
    std::vector<Answer> m_answers;  // in the order of the facts
};

}  // namespace vexa::probe
