#include "MacroFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>

namespace vexa::runner {
namespace {

constexpr char COMMENT_token = '#';
constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kStandardInput = "-";

struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
};

std::string readToEnd(FILE* file) {
    std::string text;
    std::array<char, 65536> chunk{};
    std::size_t count = 0;
    while ((count = std::fread(chunk.data(), 1, chunk.size(), file)) > 0) text.append(chunk.data(), count);
    if (std::ferror(file)) throw std::system_error(errno, std::generic_category());
    return text;
}

std::string readText(const std::string& path) {
    if (path == kStandardInput) return readToEnd(stdin);
    const std::unique_ptr<FILE, FileCloser> file(std::fopen(path.c_str(), "rbe"));
    if (!file) throw std::system_error(errno, std::generic_category());
    return readToEnd(file.get());
}

std::string_view withoutLeadingBlanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(kBlanks), text.size()));
}

class LineTaker {
public:
    LineTaker(MacroFile& macro, const std::set<std::string>& addOnIds) : m_macro(macro), m_addOnIds(addOnIds) {}

    void take(std::string_view line) {
        ++m_line;
        if (line.find('\0') != std::string_view::npos) return refuse("the line holds a NUL byte");
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        line = withoutLeadingBlanks(line);
        if (!line.empty() && line.front() != COMMENT_token) takeCommand(line);
    }

private:
    void takeCommand(std::string_view line) {
        const std::size_t idEnd = std::min(line.find_first_of(kBlanks), line.size());
        std::string addOnId(line.substr(0, idEnd));
        const std::string_view text = withoutLeadingBlanks(line.substr(idEnd));
        if (m_addOnIds.count(addOnId) == 0) return refuse("no add-on '" + addOnId + "' is loaded");
        if (text.empty()) return refuse("a command of '" + addOnId + "' was expected after its name");
        m_macro.commands.push_back({m_line, std::move(addOnId), std::string(text)});
    }

    void refuse(const std::string& why) { m_macro.problems.push_back(m_macro.place(m_line) + ": " + why); }

    MacroFile& m_macro;
    const std::set<std::string>& m_addOnIds;
    std::size_t m_line = 0;
};

void takeLines(std::string_view text, LineTaker taker) {
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) text.remove_prefix(kByteOrderMark.size());
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        taker.take(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

}  // namespace

std::string MacroFile::place(std::size_t line) const { return name + ':' + std::to_string(line); }

MacroFile readMacroFile(const std::string& path, const std::set<std::string>& addOnIds) {
    MacroFile macro;
    macro.name = path == kStandardInput ? "<stdin>" : path;
    try {
        takeLines(readText(path), LineTaker(macro, addOnIds));
    } catch (const std::system_error& error) {
        macro.problems.push_back(macro.name + ": cannot be read: " + error.code().message());
    }
    return macro;
}

}  // namespace vexa::runner
