#include "vexautilutil/UInt64MacroOption.h"

#include <boost/lexical_cast.hpp>

#include "text/Assignment.h"
#include "text/NumberText.h"
#include "vexautilutil/MacroCommandError.h"
#include "vexautilutil/MacroOptionPerformer.h"

namespace vexa::vexautilutil {
namespace {

// Does not move past the value, so that `current` is on it if this throws.
uint64_t readUInt64(const MacroTokenIterator& current, const MacroTokenIterator& end) {
    if (current == end) throw MacroCommandError("Expected UInt64 operator missing");
    uint64_t value = 0;
    if (readPlainDigits(*current, value)) return value;
    try {
        return boost::lexical_cast<uint64_t>(*current);
    } catch (const boost::bad_lexical_cast&) {
        throw MacroCommandError("Invalid integer value " + *current);
    }
}

}  // namespace

UInt64MacroOption::UInt64MacroOption(const std::string& name, uint64_t value, const uint64_t* defaultValue)
    : m_name(name),
      m_value(value),
      m_hasDefault(defaultValue != nullptr),
      m_defaultValue(m_hasDefault ? *defaultValue : 0) {}

UInt64MacroOption::UInt64MacroOption(MacroTokenIterator& current, const MacroTokenIterator& end,
                                     const uint64_t* defaultValue)
    : m_name(parseIdentifier(current, end)),
      m_hasDefault(defaultValue != nullptr),
      m_defaultValue(m_hasDefault ? *defaultValue : 0) {
    parseAssignmentOperator(current, end);
    m_value = readUInt64(current, end);
    ++current;
}

void UInt64MacroOption::perform(MacroOptionPerformerInterface& performer) { performer.action(*this); }

std::string UInt64MacroOption::name() const { return m_name; }

bool UInt64MacroOption::isDefaultValue() const { return m_hasDefault && m_value == m_defaultValue; }

std::string UInt64MacroOption::toString() const {
    std::string text = beginAssignment(m_name, "=", kLongestNumber);
    appendNumber(text, m_value);
    return text;
}

UInt64MacroOption::~UInt64MacroOption() = default;

uint64_t UInt64MacroOption::value() const { return m_value; }

}  // namespace vexa::vexautilutil
