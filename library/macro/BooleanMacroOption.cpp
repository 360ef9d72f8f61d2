#include "vexautilutil/BooleanMacroOption.h"

#include <algorithm>
#include <locale>
#include <string_view>

#include "text/Joined.h"
#include "vexautilutil/MacroCommandError.h"
#include "vexautilutil/MacroOptionPerformer.h"

namespace vexa::vexautilutil {
namespace {

constexpr std::string_view TRUE_token = "TRUE";
constexpr std::string_view FALSE_token = "FALSE";

// Compares in the upper case of the global locale.
bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    if (a == b) return true;
    if (a.size() != b.size()) return false;
    const std::locale locale;
    const auto& characters = std::use_facet<std::ctype<char>>(locale);
    return std::equal(a.begin(), a.end(), b.begin(),
                      [&](char x, char y) { return characters.toupper(x) == characters.toupper(y); });
}

// Does not move past the value, so that `current` is on it if the caller throws.
bool readBoolean(const MacroTokenIterator& current, const MacroTokenIterator& end) {
    if (current == end) throw MacroCommandError("Expected Boolean operator missing");
    if (equalsIgnoringCase(*current, TRUE_token)) return true;
    if (equalsIgnoringCase(*current, FALSE_token)) return false;
    throw MacroCommandError("Expected a Boolean operator, but found " + *current);
}

}  // namespace

BooleanMacroOption::BooleanMacroOption(const std::string& name, bool value, const bool* defaultValue)
    : m_name(name),
      m_value(value),
      m_hasDefault(defaultValue != nullptr),
      m_defaultValue(m_hasDefault && *defaultValue) {}

BooleanMacroOption::BooleanMacroOption(MacroTokenIterator& current, const MacroTokenIterator& end,
                                       const bool* defaultValue)
    : m_name(parseIdentifier(current, end)),
      m_hasDefault(defaultValue != nullptr),
      m_defaultValue(m_hasDefault && *defaultValue) {
    parseAssignmentOperator(current, end);
    m_value = readBoolean(current, end);
    ++current;
}

void BooleanMacroOption::perform(MacroOptionPerformerInterface& performer) { performer.action(*this); }

std::string BooleanMacroOption::name() const { return m_name; }

bool BooleanMacroOption::isDefaultValue() const { return m_hasDefault && m_value == m_defaultValue; }

std::string BooleanMacroOption::toString() const { return joined(m_name, "=", m_value ? TRUE_token : FALSE_token); }

BooleanMacroOption::~BooleanMacroOption() = default;

bool BooleanMacroOption::value() const { return m_value; }

}  // namespace vexa::vexautilutil
