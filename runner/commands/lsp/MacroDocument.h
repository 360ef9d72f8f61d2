#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "language/Descriptions.h"
#include "language/Diagnostic.h"

namespace vexa::runner {

/// A place in a document, in bytes. Both numbers count from 0.
struct TextPlace {
    std::size_t line = 0;
    std::size_t byte = 0;
};

/// A macro file in an editor, and the mistakes in it. After a change, only the lines that changed are checked again.
///
/// Lines end with LF. A carriage return stays a part of its line, also at the end, so that an editor can remove it.
class MacroDocument {
public:
    struct Line {
        std::string text;
        std::vector<Diagnostic> mistakes = {};  ///< their number of the line is not set
        bool isChecked = false;
    };

    explicit MacroDocument(std::string_view text);

    const std::vector<Line>& lines() const { return m_lines; }

    /// Replaces the text from \p begin to \p end, which are places in the text, in their order.
    void replace(TextPlace begin, TextPlace end, std::string_view text);
    /// Replaces the whole text. Equal lines at its start and its end stay checked.
    void replaceAll(std::string_view text);

    /// Checks the lines that changed.
    void check(const Descriptions& descriptions);
    /// Lets check() check all lines again, by other descriptions.
    void forgetMistakes();

    /// Returns the bytes of the text, without line ends, and about how many bytes of memory the document needs.
    std::size_t size() const;
    std::size_t cost() const;

private:
    void replaceLines(std::size_t begin, std::size_t end, std::vector<Line> lines);

    std::vector<Line> m_lines;  // at least one
};

}  // namespace vexa::runner
