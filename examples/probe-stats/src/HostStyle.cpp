#include "HostStyle.h"

#include <charconv>
#include <string>
#include <vector>

#include "vexautilutil/StyleValue.h"

namespace probestats {
namespace {

using vexa::toolbox::Set;
using vexa::vexautilutil::ResultType_e;

constexpr int kMostDigits = 17;  // a double has no more digits

// Returns the value of a style setting as text; nothing if the host has no value of this kind.
std::optional<std::string> styleValue(std::vector<std::string> path, ResultType_e wanted) {
    ResultType_e type = vexa::vexautilutil::ResultType_None;
    GetValueReturnCode_e code = GetValueReturnCode_NotAvailable;
    std::string value;
    vexa::vexautilutil::getValueAsString(path, 0, 0, type, code, value);
    if (code != GetValueReturnCode_Ok || type != wanted) return std::nullopt;
    return value;
}

std::optional<int> digits() {
    const auto value = styleValue({"Text", "NumberFormat", "Precision"}, vexa::vexautilutil::ResultType_Integer);
    if (!value) return std::nullopt;
    int number = 0;
    const std::errc failure = std::from_chars(value->data(), value->data() + value->size(), number).ec;
    if (failure != std::errc() || number < 1 || number > kMostDigits) return std::nullopt;
    return number;
}

std::optional<Set> activeColumns() {
    const auto value = styleValue({"FieldMap", "ActiveFieldMaps"}, vexa::vexautilutil::ResultType_Set);
    if (!value) return std::nullopt;
    Set columns;
    columns.assign(*value);
    return columns;
}

}  // namespace

HostStyle hostStyle() {
    HostStyle style;
    style.report.digits = digits().value_or(style.report.digits);
    style.report.title = styleValue({"Frame", "Title", "Text"}, vexa::vexautilutil::ResultType_String).value_or("");
    style.activeColumns = activeColumns();
    return style;
}

}  // namespace probestats
