#include "formats/MacroFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
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
#include "vexautilutil/FileSystem.h"

namespace vexa::runner {
namespace {

using vexautilutil::AsciiFile;

constexpr char COMMENT_token = '#';
constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kWhiteSpace = " \t\v\f\r";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kStandardInput = "-";
constexpr std::string_view kNul("\0", 1);
constexpr const char* kHoldsNul = "the line holds a NUL byte";

[[noreturn]] void throwReadError() {
    if (errno == ENOMEM) throw std::bad_alloc();
    throwLastError();
}

// AsciiFile needs the size of a file before it reads. A pipe has none, and some devices report 0.
bool hasSize(const std::string& path) {
    unsigned long size = 0;
    return filesystem::fileStatus(path, true).type() == boost::filesystem::regular_file &&
           filesystem::fileSize(path, size) && size > 0;
}

// At most three bytes of a file after the first `offset` bytes: enough to see a line end and whether more follows.
std::string bytesBehind(const std::string& path, std::ptrdiff_t offset) {
    const auto close = [](FILE* file) { std::fclose(file); };
    const std::unique_ptr<FILE, decltype(close)> file(filesystem::fileOpen(path, "rbe"), close);
    if (!file || fseeko(file.get(), offset, SEEK_SET) != 0) throwReadError();
    std::array<char, 3> bytes{};
    return {bytes.data(), std::fread(bytes.data(), 1, bytes.size(), file.get())};
}

std::string_view withoutLeadingBlanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(kBlanks), text.size()));
}

class MacroReader {
public:
    MacroReader(MacroFile& macro, const std::set<std::string>& addOnIds, UnknownId_e unknownId)
        : m_macro(macro), m_addOnIds(addOnIds), m_unknownId(unknownId) {}

    void read(const std::string& path) {
        std::optional<MemoryFile> copy;
        if (path == kStandardInput) {
            copy.emplace(readStandardInput());
        } else if (!hasSize(path)) {
            copy.emplace(readWholeFile(path));
        }
        if (!m_file.open(copy ? copy->path() : path)) throwReadError();
        while (!m_file.isEOF()) takeLine();
        checkEnd();
    }

private:
    void takeLine() {
        const std::string behind = behindLine(m_file.currentLineNumber());
        std::string_view line = m_file.readRawLine();
        const std::size_t lineNumber = m_file.currentLineNumber();
        if (startsWith(behind, kNul)) return;  // checkEnd() refuses it
        if (startsWith(behind, "\r") && behind != "\r" && !startsWith(behind, "\r\n")) {
            return refuse(lineNumber, "the line holds a carriage return");
        }
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
            return refuse(lineNumber, "a command of '" + command.addOnId + "' was expected after its name");
        }
        m_macro.commands.push_back(std::move(command));
    }

    // AsciiFile ends the file at a NUL, so there can be one only after the last line that it found.
    void checkEnd() {
        const std::size_t lines = m_file.numLinesInFile();
        const std::string behind = lines == 0 ? bytesBehind(m_file.fileName(), 0) : behindLine(lines - 1);
        const std::size_t lineEnd = behind.find('\n');
        if (startsWith(behind, kNul)) {
            refuse(std::max<std::size_t>(lines, 1), kHoldsNul);
        } else if (lineEnd != std::string::npos && lineEnd + 1 < behind.size()) {
            refuse(lines + 1, kHoldsNul);
        }
    }

    // The bytes after the text that AsciiFile returns for a line, at most three for the last line. They are the line
    // end, unless AsciiFile has cut the line at a carriage return or the file at a NUL.
    std::string behindLine(std::uint64_t index) const {
        const char* const line = m_file.readRawLineAtOffset(index);
        const char* const end = line + std::strlen(line);
        if (index + 1 == m_file.numLinesInFile()) {
            return bytesBehind(m_file.fileName(), end - m_file.readRawLineAtOffset(0));
        }
        const std::ptrdiff_t count = m_file.readRawLineAtOffset(index + 1) - end;
        return std::string(static_cast<std::size_t>(count - 1), '\r') + '\n';
    }

    void refuse(std::size_t lineNumber, const std::string& why) {
        m_macro.problems.push_back(m_macro.place(lineNumber) + ": " + why);
    }

    MacroFile& m_macro;
    const std::set<std::string>& m_addOnIds;
    UnknownId_e m_unknownId;
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
