#include "commands/lsp/DocumentAnswers.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "commands/docs/OptionText.h"
#include "commands/lsp/JsonRpc.h"
#include "commands/lsp/LineHelp.h"
#include "language/Completion.h"
#include "language/LineCheck.h"
#include "language/LineFormat.h"
#include "language/MacroLine.h"
#include "terminal/Console.h"
#include "text/Printable.h"
#include "text/ShortText.h"

namespace vexa::runner {
namespace {

using nlohmann::json;

// Numbers of the protocol.
constexpr int kErrorSeverity = 1;
constexpr int kWarningSeverity = 2;
constexpr int kFunctionSymbol = 12;

int completionKind(LinePart_e part) {
    switch (part) {
        case LinePart_e::AddOn: return 9;    // a module
        case LinePart_e::Command: return 3;  // a function
        case LinePart_e::Option: return 10;  // a property
        case LinePart_e::Value: return 12;
    }
    return 1;
}

std::size_t countIn(const json& position, const char* member) {
    const json& count = position.at(member);
    if (!count.is_number_unsigned()) throw RpcError(kInvalidParams, "a position needs integers of 0 or more");
    return count.get<std::size_t>();
}

json markup(const LineHelp& help, bool asMarkdown) {
    if (asMarkdown) return {{"kind", "markdown"}, {"value", "```\n" + help.title + "\n```\n" + help.detail}};
    return {{"kind", "plaintext"}, {"value", help.title + "\n\n" + withoutMarks(help.detail)}};
}

}  // namespace

TextPlace DocumentAnswers::placeOf(const json& position) const {
    const std::size_t line = countIn(position, "line");
    const std::size_t column = countIn(position, "character");
    const auto& lines = m_document.lines();
    if (line >= lines.size()) return {lines.size() - 1, lines.back().text.size()};
    return {line, byteAt(lines[line].text, column, m_unit)};
}

json DocumentAnswers::range(std::size_t line, Span span) const {
    const std::string& text = m_document.lines()[line].text;
    const auto place = [&](std::size_t at) { return json{{"line", line}, {"character", columnAt(text, at, m_unit)}}; };
    return {{"start", place(span.begin)}, {"end", place(span.end)}};
}

Span DocumentAnswers::partOf(std::size_t line) const { return commandPart(m_document.lines()[line].text, line == 0); }

std::string_view DocumentAnswers::commandOf(std::size_t line) const {
    return textOf(partOf(line), m_document.lines()[line].text);
}

json DocumentAnswers::diagnostics() const {
    json all = json::array();
    for (std::size_t i = 0; i < m_document.lines().size(); ++i) {
        for (const Diagnostic& mistake : m_document.lines()[i].mistakes) {
            if (all.size() == kMostMistakes) return all;
            const bool isError = mistake.severity == standin::Severity_e::Error;
            all.push_back({{"range", range(i, mistake.span)},
                           {"severity", isError ? kErrorSeverity : kWarningSeverity},
                           {"code", mistake.rule},
                           {"source", kProgramName},
                           {"message", printableLine(mistake.message)}});
        }
    }
    return all;
}

json DocumentAnswers::completion(TextPlace place) const {
    const Span part = partOf(place.line);
    const std::size_t end = std::clamp(place.byte, part.begin, part.end);
    const std::string_view typed = commandOf(place.line).substr(0, end - part.begin);
    const Completion completion = completionAt(typed, m_descriptions);
    const json replaced = range(place.line, {part.begin + completion.begin, end});
    json items = json::array();
    for (const std::string& text : completion.texts) {
        json item = {{"label", withoutTrailingBlanks(text)},
                     {"filterText", text},
                     {"textEdit", {{"range", replaced}, {"newText", text}}}};
        // Editors sort by this text, and the order is that of the description.
        std::string order = std::to_string(items.size());
        item["sortText"] = order.insert(0, 6 - std::min<std::size_t>(order.size(), 6), '0');
        const std::string line = std::string(typed.substr(0, completion.begin)) + text;
        if (const auto help = helpAt(line, completion.begin, m_descriptions)) {
            item["kind"] = completionKind(help->part);
            item["documentation"] = markup(*help, false);
        }
        items.push_back(std::move(item));
    }
    return items;
}

json DocumentAnswers::hover(TextPlace place, bool asMarkdown) const {
    const Span part = partOf(place.line);
    if (place.byte < part.begin) return nullptr;
    const auto help = helpAt(commandOf(place.line), place.byte - part.begin, m_descriptions);
    if (!help) return nullptr;
    const Span span{help->span.begin + part.begin, help->span.end + part.begin};
    return {{"contents", markup(*help, asMarkdown)}, {"range", range(place.line, span)}};
}

json DocumentAnswers::symbols(const std::string& uri) const {
    json all = json::array();
    for (std::size_t i = 0; i < m_document.lines().size(); ++i) {
        const Span part = partOf(i);
        const MacroLine parts = parseLine(commandOf(i), m_descriptions);
        if (!parts.isCommand()) continue;
        const Span named{parts.id.begin, std::max(parts.id.end, parts.word.end)};
        json symbol = {{"name", printableLine(shortText(textOf(named, commandOf(i))))}, {"kind", kFunctionSymbol}};
        const json whole = range(i, part);
        if (uri.empty()) {
            symbol["range"] = whole;
            symbol["selectionRange"] = range(i, {part.begin + named.begin, part.begin + named.end});
        } else {
            symbol["location"] = {{"uri", uri}, {"range", whole}};
        }
        all.push_back(std::move(symbol));
    }
    return all;
}

json DocumentAnswers::formatting() const {
    json edits = json::array();
    for (std::size_t i = 0; i < m_document.lines().size(); ++i) {
        const std::string formatted = formattedLine(commandOf(i), m_descriptions);
        if (formatted != commandOf(i)) edits.push_back({{"range", range(i, partOf(i))}, {"newText", formatted}});
    }
    return edits;
}

}  // namespace vexa::runner
