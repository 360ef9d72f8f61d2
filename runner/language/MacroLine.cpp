#include "language/MacroLine.h"

#include <algorithm>
#include <cstddef>

namespace vexa::runner {
namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";  // of the scanner
constexpr std::string_view kQuotes = "'\"";
constexpr char COMMENT_token = '#';
constexpr char ASSIGN_token = '=';
constexpr char OPEN_SET_token = '[';
constexpr char CLOSE_SET_token = ']';
constexpr char ESCAPE_token = '\\';

class LineReader {
public:
    LineReader(std::string_view line, const Descriptions& descriptions) : m_line(line), m_descriptions(descriptions) {}

    MacroLine read() {
        MacroLine parts;
        skip(kBlanks);
        if (isAtEnd() || m_line[m_at] == COMMENT_token) return parts;
        parts.id = takeUntil(kBlanks);
        parts.addOn = m_descriptions.find(textOf(parts.id, m_line));
        skip(kBlanks);
        parts.word = takeUntil(kWhiteSpace);
        if (parts.addOn != nullptr) parts.command = findCommand(*parts.addOn, textOf(parts.word, m_line));
        if (parts.command != nullptr) readOptions(parts);
        return parts;
    }

private:
    bool isAtEnd() const { return m_at == m_line.size(); }

    void skip(std::string_view characters) {
        m_at = std::min(m_line.find_first_not_of(characters, m_at), m_line.size());
    }

    Span takeUntil(std::string_view characters) {
        const std::size_t begin = m_at;
        m_at = std::min(m_line.find_first_of(characters, m_at), m_line.size());
        return {begin, m_at};
    }

    // The tokens of option classes are separated by the blank only.
    std::string_view separators() const { return m_isProcessor ? kWhiteSpace : kWhiteSpace.substr(0, 1); }

    void readOptions(MacroLine& parts) {
        m_isProcessor = parts.command->kind == CommandKind_e::Processor;
        for (skip(separators()); !isAtEnd(); skip(separators())) parts.options.push_back(readOption(*parts.command));
    }

    WrittenOption readOption(const CommandDescription& command) {
        WrittenOption option;
        option.name = takeUntil(m_isProcessor ? " \t\n\v\f\r=" : " =");
        option.description = findOption(command, textOf(option.name, m_line));
        const std::size_t nameEnd = m_at;
        skip(separators());
        option.hasAssign = !isAtEnd() && m_line[m_at] == ASSIGN_token;
        if (!option.hasAssign) return option;
        const std::size_t assign = m_at++;
        skip(separators());
        option.isTight = assign == nameEnd && m_at == assign + 1;
        readValue(option);
        return option;
    }

    void readValue(WrittenOption& option) {
        const std::size_t begin = m_at;
        if (isAtEnd()) {
            option.value = {m_at, m_at};
            return;
        }
        const char first = m_line[m_at];
        const bool isQuote = kQuotes.find(first) != std::string_view::npos;
        if (isQuote && takesQuotes(option)) {
            option.isOpen = !skipQuoted(option);
        } else if (first == OPEN_SET_token && takesSets(option)) {
            const std::size_t close = m_line.find(CLOSE_SET_token, m_at);
            option.isOpen = close == std::string_view::npos;
            m_at = option.isOpen ? m_line.size() : close + 1;
        } else {
            takeUntil(separators());
        }
        option.value = {begin, m_at};
        if (!m_isProcessor) option.rest = takeUntil(separators());
    }

    static bool takesQuotes(const WrittenOption& option) {
        return option.description == nullptr || isQuoted(option.description->type);
    }
    static bool takesSets(const WrittenOption& option) {
        return option.description == nullptr || option.description->type == OptionType_e::Set;
    }

    // Returns false if the closing quote is missing.
    bool skipQuoted(const WrittenOption& option) {
        const bool hasEscapes = option.description == nullptr ? m_isProcessor : option.description->hasEscapes;
        const char quote = m_line[m_at];
        for (++m_at; !isAtEnd(); ++m_at) {
            if (m_line[m_at] == quote) {
                ++m_at;
                return true;
            }
            if (hasEscapes && m_line[m_at] == ESCAPE_token && m_at + 1 < m_line.size()) ++m_at;
        }
        return false;
    }

    std::string_view m_line;
    const Descriptions& m_descriptions;
    std::size_t m_at = 0;
    bool m_isProcessor = false;
};

}  // namespace

MacroLine parseLine(std::string_view line, const Descriptions& descriptions) {
    return LineReader(line, descriptions).read();
}

}  // namespace vexa::runner
