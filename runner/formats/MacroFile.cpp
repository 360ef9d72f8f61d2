#include "formats/MacroFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <new>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "options/Refusals.h"
#include "system/LastError.h"
#include "system/files/WholeFile.h"
#include "text/StartsWith.h"
#include "vexautilutil/AsciiFile.h"

namespace vexa::runner {
namespace {

using vexautilutil::AsciiFile;

constexpr char COMMENT_token = '#';
constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kWhiteSpace = " \t\v\f\r";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kStandardInput = "-";
constexpr const char* kHoldsReturn = "the line contains a carriage return";

std::string_view withoutLeadingBlanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(kBlanks), text.size()));
}

// A line as AsciiFile returns it, up to its first carriage return.
struct TextLine {
    std::string_view text;
    bool isCut;  // true if the line goes on after a carriage return
};

// The lines of a file, through AsciiFile.
class FileLines {
public:
    // `text` is the text of the file.
    FileLines(const std::string& path, std::string_view text) : m_text(text) {
        if (m_file.open(path)) return;
        if (errno == ENOMEM) throw std::bad_alloc();
        throwLastError();
    }

    std::optional<TextLine> next() {
        if (m_file.isEOF()) return std::nullopt;
        const char* const line = m_file.readRawLine();
        const std::size_t length = std::strlen(line);
        const auto end = static_cast<std::size_t>(line - m_file.readRawLineAtOffset(0)) + length;
        const std::size_t lineFeed = std::min(m_text.find('\n', end), m_text.size());
        return TextLine{{line, length}, lineFeed > end + 1};
    }

private:
    std::string_view m_text;
    AsciiFile m_file;
};

// The same lines, from memory.
class TextLines {
public:
    explicit TextLines(std::string_view text) : m_rest(text) {}

    std::optional<TextLine> next() {
        if (m_rest.empty()) return std::nullopt;
        const std::string_view line = m_rest.substr(0, m_rest.find('\n'));
        m_rest.remove_prefix(std::min(line.size() + 1, m_rest.size()));
        const std::string_view text = line.substr(0, line.find('\r'));
        return TextLine{text, line.size() > text.size() + 1};
    }

private:
    std::string_view m_rest;
};

// Returns the lines before the one with the first NUL.
std::string_view withoutNul(std::string_view text) {
    const std::size_t nul = text.find('\0');
    if (nul == std::string_view::npos) return text;
    return text.substr(0, text.rfind('\n', nul) + 1);
}

class MacroReader {
public:
    MacroReader(MacroFile& macro, const std::set<std::string>& addOnIds, UnknownId_e unknownId)
        : m_macro(macro), m_addOnIds(addOnIds), m_unknownId(unknownId) {}

    template <class Lines>
    void read(Lines lines) {
        while (const auto line = lines.next()) takeLine(*line);
    }

    // Refuses the line after those that were read. `rest` starts with it, and has a NUL.
    void refuseNul(std::string_view rest) {
        const bool hasReturn = rest.substr(0, rest.find('\0')).find('\r') != std::string_view::npos;
        refuse(m_lineNumber + 1, hasReturn ? kHoldsReturn : "the line contains a NUL byte");
    }

private:
    void takeLine(TextLine line) {
        ++m_lineNumber;
        if (line.isCut) return refuse(m_lineNumber, kHoldsReturn);
        if (m_lineNumber == 1 && startsWith(line.text, kByteOrderMark)) line.text.remove_prefix(kByteOrderMark.size());
        MacroCommand command = commandOfLine(line.text);
        command.place = m_macro.place(m_lineNumber);
        if (!command.addOnId.empty()) takeCommand(std::move(command));
    }

    void takeCommand(MacroCommand command) {
        const bool isUnknown = m_addOnIds.count(command.addOnId) == 0;
        if (isUnknown && m_unknownId == UnknownId_e::RefusesFile) {
            return refuse(m_lineNumber, noSuchAddOn(command.addOnId, m_addOnIds));
        }
        if (!isUnknown && command.text.find_first_not_of(kWhiteSpace) == std::string::npos) {
            return refuse(m_lineNumber, "expected a command after '" + command.addOnId + "'");
        }
        m_macro.commands.push_back(std::move(command));
    }

    void refuse(std::size_t lineNumber, const std::string& why) {
        m_macro.problems.push_back(m_macro.place(lineNumber) + ": " + why);
    }

    MacroFile& m_macro;
    const std::set<std::string>& m_addOnIds;
    UnknownId_e m_unknownId;
    std::size_t m_lineNumber = 0;  // of the last line that was read
};

// AsciiFile needs a file whose size is known: a pipe has none, and some devices report 0. It ends a file at a NUL.
bool isForAsciiFile(const std::string& path, std::string_view text) {
    std::error_code error;
    return path != kStandardInput && !text.empty() && withoutNul(text).size() == text.size() &&
           std::filesystem::file_size(path, error) == text.size();
}

}  // namespace

std::string MacroFile::place(std::size_t line) const { return name + ':' + std::to_string(line); }

MacroCommand commandOfLine(std::string_view line) {
    line = withoutLeadingBlanks(line);
    if (!line.empty() && line.front() == COMMENT_token) line = {};
    const std::size_t idEnd = std::min(line.find_first_of(kBlanks), line.size());
    return {"", std::string(line.substr(0, idEnd)), std::string(withoutLeadingBlanks(line.substr(idEnd)))};
}

MacroFile macroIn(std::string_view text, const std::string& name, const std::set<std::string>& addOnIds,
                  UnknownId_e unknownId) {
    MacroFile macro;
    macro.name = name;
    const std::string_view whole = withoutNul(text);
    MacroReader reader(macro, addOnIds, unknownId);
    reader.read(TextLines(whole));
    if (whole.size() < text.size()) reader.refuseNul(text.substr(whole.size()));
    return macro;
}

MacroFile readMacroFile(const std::string& path, const std::set<std::string>& addOnIds, UnknownId_e unknownId) {
    MacroFile macro;
    macro.name = path == kStandardInput ? "<stdin>" : path;
    try {
        const std::string text = path == kStandardInput ? readStandardInput() : readWholeFile(path);
        if (!isForAsciiFile(path, text)) return macroIn(text, macro.name, addOnIds, unknownId);
        MacroReader(macro, addOnIds, unknownId).read(FileLines(path, text));
    } catch (const std::system_error& error) {
        macro.problems.push_back(macro.name + ": cannot be read: " + error.code().message());
    }
    return macro;
}

}  // namespace vexa::runner
