#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vexa::runner {

/// What the user types, line by line. In a terminal the line is edited, lines of before come back, from the last time,
/// too, and the tabulator completes the first word and, behind it, names of files; Ctrl-C gives the line up. Where the
/// program was built without that, and for what comes from elsewhere, lines are only read.
class LineReader {
public:
    /// \param words those that a line may begin with
    explicit LineReader(std::vector<std::string> words);
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;
    /// Keeps the lines for the next time.
    ~LineReader();

    /// The next line without its end; nothing at the end of them all.
    std::optional<std::string> next() const;

private:
    bool m_isEditing;
};

}  // namespace vexa::runner
