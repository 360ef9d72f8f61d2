#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "commands/lsp/MacroDocument.h"
#include "language/Descriptions.h"
#include "text/TextColumn.h"

namespace vexa::runner {

/// Answers questions of an editor about one document, as the language server protocol defines them. It counts columns
/// in \p unit. The document and the descriptions must outlive it.
class DocumentAnswers {
public:
    DocumentAnswers(const MacroDocument& document, const Descriptions& descriptions, ColumnUnit_e unit)
        : m_document(document), m_descriptions(descriptions), m_unit(unit) {}

    /// Returns the place of \p position; the end of the line or of the text if the position is after it.
    /// \throws RpcError if it is no position
    TextPlace placeOf(const nlohmann::json& position) const;

    static constexpr std::size_t kMostMistakes = 1000;  ///< in diagnostics()

    /// Returns the mistakes: Diagnostic[]. If there are more than kMostMistakes, returns the first ones.
    nlohmann::json diagnostics() const;
    /// Returns what may be typed at \p place: CompletionItem[].
    nlohmann::json completion(TextPlace place) const;
    /// Returns the help for what is at \p place, a Hover; null if there is none.
    nlohmann::json hover(TextPlace place, bool asMarkdown) const;
    /// Returns the commands: DocumentSymbol[], or SymbolInformation[] if \p uri, the document's name, is not empty.
    nlohmann::json symbols(const std::string& uri) const;
    /// Returns the changes of formattedLine(): TextEdit[].
    nlohmann::json formatting() const;

private:
    nlohmann::json range(std::size_t line, Span span) const;
    Span partOf(std::size_t line) const;
    std::string_view commandOf(std::size_t line) const;

    const MacroDocument& m_document;
    const Descriptions& m_descriptions;
    ColumnUnit_e m_unit;
};

}  // namespace vexa::runner
