#include "commands/docs/DescriptionPage.h"

#include <string_view>
#include <vector>

#include "commands/docs/OptionText.h"

namespace vexa::runner {
namespace {

constexpr const char* kHtmlHead = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<style>
body { font-family: sans-serif; line-height: 1.5; max-width: 60em; margin: 2em auto; padding: 0 1em; }
table { border-collapse: collapse; }
th, td { border: 1px solid #bbb; padding: 0.2em 0.6em; text-align: left; vertical-align: top; }
pre { background: #f4f4f4; padding: 0.6em; overflow-x: auto; }
</style>
)";

// ---- Markdown

std::string inCode(const std::string& text) { return '`' + text + '`'; }

std::string asCell(const std::string& text) {
    std::string cell;
    for (const char c : text) cell += c == '|' ? "\\|" : std::string(1, c);
    return cell;
}

std::string markdownRow(const std::vector<std::string>& cells) {
    std::string row = "|";
    for (const std::string& cell : cells) row += cell.empty() ? " |" : ' ' + asCell(cell) + " |";
    return row + '\n';
}

// The cells after the name of the command.
std::vector<std::string> cellsOf(const OptionDescription& option, CommandKind_e kind) {
    return {inCode(option.name), typeText(option), defaultText(option, kind), option.help};
}

std::string indented(const std::string& line) { return "    " + line + '\n'; }

std::string markdownOf(const AddOnDescription& addOn, const CommandDescription& command) {
    std::string text =
        "\n## " + command.name + "\n\n" + command.purpose + "\n\n" + indented(syntaxText(addOn, command));
    if (!command.options.empty()) {
        text += "\n| option | type | default | meaning |\n|---|---|---|---|\n";
        for (const OptionDescription& option : command.options) text += markdownRow(cellsOf(option, command.kind));
    }
    if (command.examples.empty()) return text;
    text += "\nExamples:\n\n";
    for (const std::string& example : command.examples) text += indented(addOn.addOn + ' ' + example);
    return text;
}

// ---- HTML

std::string escaped(std::string_view text) {
    std::string html;
    for (const char c : text) {
        switch (c) {
            case '&': html += "&amp;"; break;
            case '<': html += "&lt;"; break;
            case '>': html += "&gt;"; break;
            case '"': html += "&quot;"; break;
            default: html += c;
        }
    }
    return html;
}

// Turns text between backticks into code.
std::string asHtml(std::string_view text) {
    std::string html;
    while (!text.empty()) {
        const std::size_t begin = text.find('`');
        const std::size_t end = begin == std::string_view::npos ? begin : text.find('`', begin + 1);
        html += escaped(text.substr(0, end == std::string_view::npos ? end : begin));
        if (end == std::string_view::npos) break;
        html += "<code>" + escaped(text.substr(begin + 1, end - begin - 1)) + "</code>";
        text.remove_prefix(end + 1);
    }
    return html;
}

std::string htmlRow(const std::vector<std::string>& cells) {
    std::string row = "<tr>";
    for (const std::string& cell : cells) row += "<td>" + asHtml(cell) + "</td>";
    return row + "</tr>\n";
}

std::string htmlOf(const AddOnDescription& addOn, const CommandDescription& command) {
    const std::string name = escaped(command.name);
    std::string text = "<h2 id=\"" + name + "\">" + name + "</h2>\n<p>" + asHtml(command.purpose) + "</p>\n<pre>" +
                       escaped(syntaxText(addOn, command)) + "</pre>\n";
    if (!command.options.empty()) {
        text += "<table>\n<tr><th>option</th><th>type</th><th>default</th><th>meaning</th></tr>\n";
        for (const OptionDescription& option : command.options) text += htmlRow(cellsOf(option, command.kind));
        text += "</table>\n";
    }
    if (command.examples.empty()) return text;
    text += "<p>Examples:</p>\n<pre>";
    for (const std::string& example : command.examples) text += escaped(addOn.addOn + ' ' + example) + '\n';
    return text + "</pre>\n";
}

}  // namespace

std::string markdownPage(const AddOnDescription& addOn) {
    std::string text = "# Commands of " + addOn.addOn + '\n';
    for (const CommandDescription& command : addOn.commands) text += markdownOf(addOn, command);
    return text;
}

std::string htmlPage(const AddOnDescription& addOn) {
    const std::string title = "Commands of " + escaped(addOn.addOn);
    std::string text = kHtmlHead + ("<title>" + title + "</title>\n</head>\n<body>\n<h1>" + title + "</h1>\n");
    for (const CommandDescription& command : addOn.commands) text += htmlOf(addOn, command);
    return text + "</body>\n</html>\n";
}

std::string markdownTable(const AddOnDescription& addOn) {
    std::string text = "| command | option | type | default | meaning |\n|---|---|---|---|---|\n";
    for (const CommandDescription& command : addOn.commands) {
        text += markdownRow({inCode(command.name), "", "", "", command.purpose});
        for (const OptionDescription& option : command.options) {
            std::vector<std::string> cells = cellsOf(option, command.kind);
            cells.insert(cells.begin(), "");
            text += markdownRow(cells);
        }
    }
    return text;
}

}  // namespace vexa::runner
