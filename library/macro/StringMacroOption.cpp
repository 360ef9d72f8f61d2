#include "vexautilutil/StringMacroOption.h"

#include "text/Assignment.h"
#include "vexautilutil/MacroCommandError.h"
#include "vexautilutil/MacroOptionPerformer.h"

namespace vexa::vexautilutil {
namespace {

const std::string SINGLE_QUOTE_token = "'";
const std::string DOUBLE_QUOTE_token = "\"";

// Double quotes are preferred. A value with both kinds gets single ones, and cannot be read back.
const std::string& quoteFor(const std::string& value) {
    return value.find(DOUBLE_QUOTE_token) == std::string::npos ? DOUBLE_QUOTE_token : SINGLE_QUOTE_token;
}

// Leaves `current` on the opening quote.
const std::string& readOpeningQuote(const MacroTokenIterator& current, const MacroTokenIterator& end) {
    if (current == end) throw MacroCommandError("Expected string operator missing");
    if (*current == DOUBLE_QUOTE_token) return DOUBLE_QUOTE_token;
    if (*current == SINGLE_QUOTE_token) return SINGLE_QUOTE_token;
    throw MacroCommandError("Expected single or double quoted string");
}

// Joins the tokens after the opening quote, on which `current` stands, up to the next such quote, and moves past it.
// The tokenizer drops nothing, so this is the text as it was written.
std::string parseQuotedString(MacroTokenIterator& current, const MacroTokenIterator& end) {
    const std::string quote = *current;
    std::string value;
    for (++current; current != end && *current != quote; ++current) value += *current;
    if (current == end) {
        throw MacroCommandError(std::string("Expected string to terminate with a ") +
                                (quote == DOUBLE_QUOTE_token ? "double " : "single ") + "quotation mark");
    }
    ++current;
    return value;
}

}  // namespace

StringMacroOption::StringMacroOption(const std::string& name, const std::string& value, const std::string* defaultValue)
    : m_name(name),
      m_value(value),
      m_quote(quoteFor(value)),
      m_hasDefault(defaultValue != nullptr),
      m_defaultValue(m_hasDefault ? *defaultValue : std::string()) {}

StringMacroOption::StringMacroOption(MacroTokenIterator& current, const MacroTokenIterator& end,
                                     const std::string* defaultValue)
    : m_name(parseIdentifier(current, end)), m_hasDefault(defaultValue != nullptr) {
    parseAssignmentOperator(current, end);
    m_quote = readOpeningQuote(current, end);
    m_value = parseQuotedString(current, end);
    if (m_hasDefault) m_defaultValue = *defaultValue;
}

void StringMacroOption::perform(MacroOptionPerformerInterface& performer) { performer.action(*this); }

std::string StringMacroOption::name() const { return m_name; }

bool StringMacroOption::isDefaultValue() const { return m_hasDefault && m_value == m_defaultValue; }

std::string StringMacroOption::toString() const {
    std::string text = beginAssignment(m_name, "=", m_quote.size() + m_value.size() + m_quote.size());
    text += m_quote;
    text += m_value;
    text += m_quote;
    return text;
}

StringMacroOption::~StringMacroOption() = default;

std::string StringMacroOption::value() const { return m_value; }

}  // namespace vexa::vexautilutil
