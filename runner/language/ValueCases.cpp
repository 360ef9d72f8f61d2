#include "language/ValueCases.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "language/ValueText.h"

namespace vexa::runner {
namespace {

bool isWithin(long double value, const OptionDescription& option) {
    return (!option.min || value >= option.min->value) && (!option.max || value <= option.max->value);
}

// Strings never have their closing quote missing, because the command processor would wait for it forever.
std::vector<const char*> valuesOfOtherTypes(OptionType_e type) {
    switch (type) {
        case OptionType_e::Boolean: return {"MAYBE", "2", "'TRUE'"};
        case OptionType_e::UInt64: return {"x", "1.5", "-1", "18446744073709551616", "'1'"};
        case OptionType_e::Int32: return {"x", "1.5", "'1'"};
        case OptionType_e::Int64: return {"x", "1.5", "9223372036854775808", "'1'"};
        case OptionType_e::Double: return {"x", "1.5.5", "'1'"};
        case OptionType_e::Set: return {"1", "[x]", "[1", "'[1]'"};
        case OptionType_e::String:
        case OptionType_e::Choice: break;
    }
    return {"x", "1"};
}

class ValueLister {
public:
    ValueLister(const OptionDescription& option, CommandKind_e kind) : m_option(option), m_kind(kind) {}

    std::vector<ValueCase> accepted(const std::string& sample) {
        if (m_option.defaultValue) add("at its default", written(*m_option.defaultValue));
        if (m_values.empty() || m_values.front().value != sample) add("with a value of its type", sample);
        if (m_option.type == OptionType_e::Boolean) {
            add("that is true", "TRUE");
            add("that is false", "FALSE");
        }
        for (const std::string& value : m_option.values) add("with " + value, written(value));
        if (isNumber(m_option.type)) addNumbers(sample);
        return std::move(m_values);
    }

    std::vector<ValueCase> refused() {
        const std::string noSuch = std::string("with a value that is no ") + nameOf(m_option.type);
        for (const char* const value : valuesOfOtherTypes(m_option.type)) add(noSuch, value);
        if (m_option.type == OptionType_e::Choice) {
            add("with a value that is not in the list", written(kUnknownName));
        }
        if (!m_option.mayBeEmpty) add("that is empty", m_option.type == OptionType_e::Set ? "[ ]" : written(""));
        if (isNumber(m_option.type)) addOutsideOfLimits("", "");
        if (m_option.type == OptionType_e::Set) addOutsideOfLimits("[", "]");
        return std::move(m_values);
    }

private:
    void add(const std::string& what, const std::string& value) { m_values.push_back({what, value}); }

    std::string written(const std::string& value) const { return writtenValue(value, m_option, m_kind); }

    void addNumbers(const std::string& sample) {
        if (m_option.min) add("at its minimum", m_option.min->text);
        if (m_option.max) add("at its maximum", m_option.max->text);
        const long double value = std::strtold(sample.c_str(), nullptr);
        if (m_option.type == OptionType_e::Int32) {
            add("with a value of which an Int32 uses the low 32 bits", integerText(value + kBeyondInt32));
        }
        if (m_option.type != OptionType_e::Double) return;
        for (const long double fraction : {std::floor(value) + 0.5L, std::floor(value) - 0.5L}) {
            if (!isWithin(fraction, m_option)) continue;
            return add("with a fraction", numberText(fraction));
        }
    }

    void addOutsideOfLimits(const std::string& open, const std::string& close) {
        const bool isDouble = m_option.type == OptionType_e::Double;
        const OptionType_e type = m_option.type == OptionType_e::Set ? OptionType_e::Int64 : m_option.type;
        const long double least = m_option.type == OptionType_e::Set ? 0 : leastOf(type).value;
        const auto text = [&](long double value) {
            return open + (isDouble ? numberText(value) : integerText(value)) + close;
        };
        const auto stepFrom = [&](long double end) { return isDouble ? std::max(1.0L, std::fabs(end)) : 1.0L; };
        if (m_option.min && (isDouble || m_option.min->value - 1 >= least)) {
            add("below its minimum", text(m_option.min->value - stepFrom(m_option.min->value)));
        }
        if (!m_option.max) return;
        // An Int32 would use the low 32 bits, which are within the limits.
        const bool isInt64 = m_option.type == OptionType_e::Int64;
        for (const long double more : {stepFrom(m_option.max->value), kBeyondInt32}) {
            if (!isDouble && m_option.max->value + more > greatestOf(type).value) continue;
            add("above its maximum", text(m_option.max->value + more));
            if (!isInt64) break;
        }
    }

    const OptionDescription& m_option;
    const CommandKind_e m_kind;
    std::vector<ValueCase> m_values;
};

}  // namespace

std::vector<ValueCase> acceptedValues(const OptionDescription& option, CommandKind_e kind, const std::string& sample) {
    return ValueLister(option, kind).accepted(sample);
}

std::vector<ValueCase> refusedValues(const OptionDescription& option, CommandKind_e kind) {
    return ValueLister(option, kind).refused();
}

std::string integerText(long double value) {
    return value < 0 ? std::to_string(static_cast<std::int64_t>(value))
                     : std::to_string(static_cast<std::uint64_t>(value));
}

std::string numberText(long double value) {
    std::string text = std::to_string(static_cast<double>(value));
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text += '0';
    return text;
}

}  // namespace vexa::runner
