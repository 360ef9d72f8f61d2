#include "vexautilutil/StringMacroOption.h"

#include "text/Joined.h"
#include "vexautilutil/MacroCommandError.h"
#include "vexautilutil/MacroOptionPerformer.h"

namespace vexa::vexautilutil {
namespace {

const std::string SINGLE_QUOTE_token = "'";
const std::string DOUBLE_QUOTE_token = "\"";

// Prefers double quotes. A value with both kinds of quotes gets single ones and cannot be read back.
const std::string& quoteFor(const std::string& value) {
    return value.find(DOUBLE_QUOTE_token) == std::string::npos ? DOUBLE_QUOTE_token : SINGLE_QUOTE_token;
}

// Does not move past the opening quote, so that `current` is on it if this throws.
const std::string& readOpeningQuote(const MacroTokenIterator& current, const MacroTokenIterator& end) {
    if (current == end) throw MacroCommandError("Expected string operator missing");
    if (*current == DOUBLE_QUOTE_token) return DOUBLE_QUOTE_token;
    if (*current == SINGLE_QUOTE_token) return SINGLE_QUOTE_token;
    throw MacroCommandError("Expected single or double quoted string");
}

// Joins the tokens between the opening quote, at which `current` is, and the next quote of the same kind, and moves
// past that quote. The tokenizer drops no character, so the result is the text as written.
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

std::string StringMacroOption::toString() const { return joined(m_name, "=", m_quote, m_value, m_quote); }

StringMacroOption::~StringMacroOption() = default;

std::string StringMacroOption::value() const { return m_value; }

}  // namespace vexa::vexautilutil
