#include "vexautilutil/SetMacroOption.h"

#include <new>
#include <utility>

#include "text/Joined.h"
#include "vexa/InvalidArgumentException.h"
#include "vexa/OutOfMemoryException.h"
#include "vexautilutil/MacroCommandError.h"
#include "vexautilutil/MacroOptionPerformer.h"

namespace vexa::vexautilutil {
namespace {

using toolbox::Set;

constexpr char OPENING_token[] = "[";
constexpr char CLOSING_token = ']';

std::shared_ptr<Set> copyOf(const Set* set) { return set == nullptr ? nullptr : std::make_shared<Set>(*set); }

// Returns null for a null default, even if the option has a default.
std::shared_ptr<Set> defaultOf(bool hasDefault, const Set* defaultValue) {
    return hasDefault ? copyOf(defaultValue) : nullptr;
}

// Joins the tokens from the opening bracket, at which `current` is, to the first closing bracket.
std::string takeBracketedText(MacroTokenIterator& current, const MacroTokenIterator& end) {
    std::string text = *current;
    ++current;
    while (current != end && text.back() != CLOSING_token) {
        text += *current;
        ++current;
    }
    if (text.back() != CLOSING_token) throw MacroCommandError("Expected closing set character, ]");
    return text;
}

Set parseSet(MacroTokenIterator& current, const MacroTokenIterator& end) {
    Set set;
    std::string text = takeBracketedText(current, end);
    try {
        set.assign(std::move(text));
    } catch (const InvalidArgumentException& refusal) {
        throw MacroCommandError(refusal.what());
    } catch (const OutOfMemoryException&) {
        throw std::bad_alloc();
    }
    return set;
}

}  // namespace

SetMacroOption::SetMacroOption(const std::string& name, const Set* value, bool hasDefault, const Set* defaultValue)
    : m_name(name),
      m_value(copyOf(value)),
      m_hasDefault(hasDefault),
      m_defaultValue(defaultOf(hasDefault, defaultValue)) {}

SetMacroOption::SetMacroOption(MacroTokenIterator& current, const MacroTokenIterator& end, bool hasDefault,
                               const Set* defaultValue)
    : m_name(parseIdentifier(current, end)), m_hasDefault(hasDefault) {
    parseAssignmentOperator(current, end);
    if (current == end) throw MacroCommandError("Expected set operator missing");
    if (*current != OPENING_token) throw MacroCommandError("Expected opening set character, [");
    const Set value = parseSet(current, end);
    m_value = copyOf(&value);  // copied, because the host maker's own Set may have no move operations
    m_defaultValue = defaultOf(hasDefault, defaultValue);
}

void SetMacroOption::perform(MacroOptionPerformerInterface& performer) { performer.action(*this); }

std::string SetMacroOption::name() const { return m_name; }

bool SetMacroOption::isDefaultValue() const { return m_hasDefault && m_value == m_defaultValue; }

std::string SetMacroOption::toString() const { return joined(m_name, "=", m_value->toString()); }

SetMacroOption::~SetMacroOption() = default;

std::shared_ptr<Set> SetMacroOption::value() const { return m_value; }

}  // namespace vexa::vexautilutil
