#include "formats/CommandDescription.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace vexa::runner {
namespace {

constexpr std::array<const char*, 8> kTypeNames = {"Boolean", "UInt64", "Int32", "Int64",
                                                   "Double",  "String", "Set",   "Choice"};

template <class Integer>
DescribedNumber describedInteger(Integer value) {
    return {static_cast<long double>(value), std::to_string(value)};
}

}  // namespace

const char* nameOf(OptionType_e type) { return kTypeNames.at(static_cast<std::size_t>(type)); }

const char* nameOf(CommandKind_e kind) { return kind == CommandKind_e::Command ? "command" : "processor"; }

const std::vector<OptionType_e>& typesOf(CommandKind_e kind) {
    using Type = OptionType_e;
    static const std::vector<Type> ofCommand = {Type::Boolean, Type::UInt64, Type::String, Type::Set, Type::Choice};
    static const std::vector<Type> ofProcessor = {Type::Boolean, Type::Int32, Type::Int64, Type::Double,
                                                  Type::String,  Type::Set,   Type::Choice};
    return kind == CommandKind_e::Command ? ofCommand : ofProcessor;
}

bool isInteger(OptionType_e type) {
    return type == OptionType_e::UInt64 || type == OptionType_e::Int32 || type == OptionType_e::Int64;
}

bool isNumber(OptionType_e type) { return isInteger(type) || type == OptionType_e::Double; }

bool isQuoted(OptionType_e type) { return type == OptionType_e::String || type == OptionType_e::Choice; }

DescribedNumber leastOf(OptionType_e type) {
    if (type == OptionType_e::Int32) return describedInteger(std::numeric_limits<std::int32_t>::min());
    if (type == OptionType_e::Int64) return describedInteger(std::numeric_limits<std::int64_t>::min());
    return describedInteger(0);
}

DescribedNumber greatestOf(OptionType_e type) {
    if (type == OptionType_e::Int32) return describedInteger(std::numeric_limits<std::int32_t>::max());
    if (type == OptionType_e::UInt64) return describedInteger(std::numeric_limits<std::uint64_t>::max());
    return describedInteger(std::numeric_limits<std::int64_t>::max());
}

}  // namespace vexa::runner
