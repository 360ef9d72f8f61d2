#include "options/HelpFormatter.h"

#include <algorithm>
#include <sstream>
#include <string_view>

#include "terminal/WrappedText.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kUsualNameColumns = 30;
constexpr std::size_t kLeastText = 20;

bool startsWithBlank(const std::string& line) { return line.empty() || line.front() == ' '; }

// A line of a table, "  KEY  text", is continued below its text. All others are code, which stays as it is.
std::string indentedLine(const std::string& line, std::size_t width) {
    const std::size_t gap = line.find("  ", std::min(line.find_first_not_of(' '), line.size()));
    const std::size_t text = line.find_first_not_of(' ', gap);
    if (gap == std::string::npos || text == std::string::npos) return line + '\n';
    return wrapped(std::string_view(line).substr(text), width, line.substr(0, text));
}

}  // namespace

HelpFormatter::HelpFormatter(std::size_t width) : m_width(width) {
    column_width(std::min(kUsualNameColumns, width * 3 / 8));
}

// What follows a line feed is put below the start of the description.
std::string HelpFormatter::make_option_desc(const CLI::Option* option) const {
    const std::size_t columns = std::max(kLeastText, m_width - get_column_width());
    std::string text = wrapped(CLI::Formatter::make_option_desc(option), columns);
    text.pop_back();
    return text;
}

std::string HelpFormatter::make_footer(const CLI::App* app) const {
    std::istringstream footer(app->get_footer());
    std::string text;
    std::string paragraph;
    const auto endParagraph = [&] {
        if (!paragraph.empty()) text += wrapped(paragraph, m_width);
        paragraph.clear();
    };
    for (std::string line; std::getline(footer, line);) {
        if (startsWithBlank(line)) {
            endParagraph();
            text += indentedLine(line, m_width);
        } else {
            paragraph += (paragraph.empty() ? "" : " ") + line;
        }
    }
    endParagraph();
    return text;
}

}  // namespace vexa::runner
