#include "commands/lsp/MacroDocument.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "language/LineCheck.h"

namespace vexa::runner {
namespace {

using Lines = std::vector<MacroDocument::Line>;

constexpr std::size_t kCostOfAMistake = 300;

Lines linesIn(std::string_view text) {
    Lines lines;
    lines.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1);
    while (true) {
        const std::size_t end = text.find('\n');
        lines.push_back({std::string(text.substr(0, end))});
        if (end == std::string_view::npos) return lines;
        text.remove_prefix(end + 1);
    }
}

Lines::iterator at(Lines& lines, std::size_t index) { return lines.begin() + static_cast<std::ptrdiff_t>(index); }

bool haveSameText(const MacroDocument::Line& one, const MacroDocument::Line& other) { return one.text == other.text; }

}  // namespace

MacroDocument::MacroDocument(std::string_view text) : m_lines(linesIn(text)) {}

void MacroDocument::replace(TextPlace begin, TextPlace end, std::string_view text) {
    std::string joined = m_lines[begin.line].text.substr(0, begin.byte);
    joined += text;
    joined.append(m_lines[end.line].text, end.byte);
    replaceLines(begin.line, end.line + 1, linesIn(joined));
}

void MacroDocument::replaceAll(std::string_view text) {
    Lines lines = linesIn(text);
    // A line that becomes or was the first one is checked again, because only the first one may have a byte-order mark.
    const std::size_t most = std::min(lines.size(), m_lines.size());
    const auto same = std::mismatch(lines.begin(), at(lines, most), m_lines.begin(), haveSameText).first;
    const auto begin = static_cast<std::size_t>(same - lines.begin());
    const auto mostAfter = static_cast<std::ptrdiff_t>(most - std::max<std::size_t>(begin, 1));
    const auto after = std::mismatch(lines.rbegin(), lines.rbegin() + mostAfter, m_lines.rbegin(), haveSameText).first;
    const auto kept = static_cast<std::size_t>(after - lines.rbegin());
    Lines changed(std::make_move_iterator(same), std::make_move_iterator(at(lines, lines.size() - kept)));
    replaceLines(begin, m_lines.size() - kept, std::move(changed));
}

void MacroDocument::replaceLines(std::size_t begin, std::size_t end, Lines lines) {
    const std::size_t both = std::min(end - begin, lines.size());
    std::move(lines.begin(), at(lines, both), at(m_lines, begin));
    m_lines.erase(at(m_lines, begin + both), at(m_lines, end));
    m_lines.insert(at(m_lines, begin + both), std::make_move_iterator(at(lines, both)),
                   std::make_move_iterator(lines.end()));
}

void MacroDocument::check(const Descriptions& descriptions) {
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        Line& line = m_lines[i];
        if (line.isChecked) continue;
        line.mistakes = checkFileLine(line.text, i == 0, descriptions);
        line.isChecked = true;
    }
}

void MacroDocument::forgetMistakes() {
    for (Line& line : m_lines) line.isChecked = false;
}

std::size_t MacroDocument::size() const {
    std::size_t sum = 0;
    for (const Line& line : m_lines) sum += line.text.size();
    return sum;
}

std::size_t MacroDocument::cost() const {
    std::size_t sum = 0;
    for (const Line& line : m_lines) {
        sum += sizeof(Line) + line.text.capacity() + kCostOfAMistake * line.mistakes.capacity();
    }
    return sum;
}

}  // namespace vexa::runner
