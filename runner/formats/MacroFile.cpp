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
#include "system/files/MemoryFile.h"
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

class MacroReader {
public:
    MacroReader(MacroFile& macro, const std::set<std::string>& addOnIds, UnknownId_e unknownId)
        : m_macro(macro), m_addOnIds(addOnIds), m_unknownId(unknownId) {}

    void read(const std::string& path) {
        m_text = path == kStandardInput ? readStandardInput() : readWholeFile(path);
        const char* problem = nullptr;
        if (const std::size_t nul = m_text.find('\0'); nul != std::string::npos) {
            const std::size_t lineStart = m_text.rfind('\n', nul) + 1;
            problem = m_text.find('\r', lineStart) < nul ? kHoldsReturn : "the line contains a NUL byte";
            m_text.resize(lineStart);
        }
        // AsciiFile needs a file whose size is known: a pipe has none, and some devices report 0.
        std::error_code error;
        const bool isPlain =
            problem == nullptr && path != kStandardInput && std::filesystem::file_size(path, error) == m_text.size();
        std::optional<MemoryFile> copy;
        if (!isPlain || m_text.empty()) copy.emplace(m_text);
        if (!m_file.open(copy ? copy->path() : path)) {
            if (errno == ENOMEM) throw std::bad_alloc();
            throwLastError();
        }
        while (!m_file.isEOF()) takeLine();
        const auto lines = static_cast<std::size_t>(std::count(m_text.begin(), m_text.end(), '\n'));
        if (problem != nullptr) refuse(lines + 1, problem);
    }

private:
    void takeLine() {
        const bool isCut = cuts(m_file.currentLineNumber());
        std::string_view line = m_file.readRawLine();
        const std::size_t lineNumber = m_file.currentLineNumber();
        if (isCut) return refuse(lineNumber, kHoldsReturn);
        if (lineNumber == 1 && startsWith(line, kByteOrderMark)) line.remove_prefix(kByteOrderMark.size());
        MacroCommand command = commandOfLine(line);
        command.place = m_macro.place(lineNumber);
        if (!command.addOnId.empty()) takeCommand(lineNumber, std::move(command));
    }

    void takeCommand(std::size_t lineNumber, MacroCommand command) {
        const bool isUnknown = m_addOnIds.count(command.addOnId) == 0;
        if (isUnknown && m_unknownId == UnknownId_e::RefusesFile) {
            return refuse(lineNumber, noSuchAddOn(command.addOnId, m_addOnIds));
        }
        if (!isUnknown && command.text.find_first_not_of(kWhiteSpace) == std::string::npos) {
            return refuse(lineNumber, "expected a command after '" + command.addOnId + "'");
        }
        m_macro.commands.push_back(std::move(command));
    }

    // Returns true if AsciiFile cuts the line `index`, counted from 0, at a carriage return that is not part of a line
    // end.
    bool cuts(std::uint64_t index) const {
        const char* const text = m_file.readRawLineAtOffset(0);
        const char* const line = m_file.readRawLineAtOffset(index);
        const auto end = static_cast<std::size_t>(line - text) + std::strlen(line);
        const std::size_t lineFeed = std::min(m_text.find('\n', end), m_text.size());
        return lineFeed > end + 1;
    }

    void refuse(std::size_t lineNumber, const std::string& why) {
        m_macro.problems.push_back(m_macro.place(lineNumber) + ": " + why);
    }

    MacroFile& m_macro;
    const std::set<std::string>& m_addOnIds;
    UnknownId_e m_unknownId;
    std::string m_text;  // ends before the line with a NUL, because AsciiFile ends the file at a NUL
    AsciiFile m_file;
};

}  // namespace

std::string MacroFile::place(std::size_t line) const { return name + ':' + std::to_string(line); }

MacroCommand commandOfLine(std::string_view line) {
    line = withoutLeadingBlanks(line);
    if (!line.empty() && line.front() == COMMENT_token) line = {};
    const std::size_t idEnd = std::min(line.find_first_of(kBlanks), line.size());
    return {"", std::string(line.substr(0, idEnd)), std::string(withoutLeadingBlanks(line.substr(idEnd)))};
}

MacroFile readMacroFile(const std::string& path, const std::set<std::string>& addOnIds, UnknownId_e unknownId) {
    MacroFile macro;
    macro.name = path == kStandardInput ? "<stdin>" : path;
    try {
        MacroReader(macro, addOnIds, unknownId).read(path);
    } catch (const std::system_error& error) {
        macro.problems.push_back(macro.name + ": cannot be read: " + error.code().message());
    }
    return macro;
}

}  // namespace vexa::runner
