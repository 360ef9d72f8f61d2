#include "vexautilutil/StyleValue.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "text/NumberText.h"
#include "vexa/toolbox/Set.h"

namespace vexa::vexautilutil {
namespace {

constexpr std::size_t kMostKeywords = 6;

struct KeywordType {
    std::string_view keyword;
    ResultType_e type;
};

// The settings whose value is not a number.
constexpr KeywordType kKeywordTypes[] = {
    {"UseClipPlanes", ResultType_Set},
    {"ActiveFieldMaps", ResultType_Set},
    {"ExportFName", ResultType_String},
    {"Name", ResultType_String},
    {"RedChannelLabel", ResultType_String},
    {"GreenChannelLabel", ResultType_String},
    {"BlueChannelLabel", ResultType_String},
    {"ASCIIChar", ResultType_String},
    {"Text", ResultType_String},
    {"ExtendedName", ResultType_String},
    {"ExtendedSettings", ResultType_String},
    {"DynamicLabelName", ResultType_String},
    {"PositivePrefix", ResultType_String},
    {"PositiveSuffix", ResultType_String},
    {"NegativePrefix", ResultType_String},
    {"NegativeSuffix", ResultType_String},
    {"ZeroPrefix", ResultType_String},
    {"ZeroSuffix", ResultType_String},
};

bool uStrEquals(std::string_view a, std::string_view b) {
    const auto lower = [](char c) { return std::tolower(static_cast<signed char>(c)); };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [=](char x, char y) { return lower(x) == lower(y); });
}

ResultType_e typeOf(std::string_view keyword) {
    for (const KeywordType& entry : kKeywordTypes) {
        if (uStrEquals(keyword, entry.keyword)) return entry.type;
    }
    return ResultType_Integer;
}

bool appendValue(ArgList_s* list, double* value) { return VexaUtilArgListAppendDoublePtr(list, "DValue", value) != 0; }

bool appendValue(ArgList_s* list, VexaArbParam* value) {
    return VexaUtilArgListAppendArbParamPtr(list, "IValue", value) != 0;
}

// Queries the host for one setting.
class StyleQuery {
public:
    StyleQuery(ArgList_s* list, const std::vector<std::string>& path, long offset1, long offset2)
        : m_list(list), m_path(path), m_offset1(offset1), m_offset2(offset2) {}

    // Does not query with an incomplete list, because that would be a query for another setting.
    template <class Value>
    GetValueReturnCode_e ask(Value* value) const {
        const bool complete = appendPath() && VexaUtilArgListAppendInt(m_list, "Offset1", m_offset1) != 0 &&
                              VexaUtilArgListAppendInt(m_list, "Offset2", m_offset2) != 0 && appendValue(m_list, value);
        return complete ? VexaUtilStyleGetLowLevelX(m_list) : GetValueReturnCode_NotAvailable;
    }

private:
    bool appendPath() const {
        static constexpr const char* kNames[kMostKeywords] = {"P1", "P2", "P3", "P4", "P5", "P6"};
        const std::size_t count = std::min(m_path.size(), kMostKeywords);
        for (std::size_t i = 0; i < count; ++i) {
            if (VexaUtilArgListAppendString(m_list, kNames[i], m_path[i].c_str()) == 0) return false;
        }
        return true;
    }

    ArgList_s* m_list;
    const std::vector<std::string>& m_path;
    long m_offset1;
    long m_offset2;
};

void setNumber(double value, ResultType_e& resultType, std::string& result) {
    std::string text;
    appendNumber(text, value);
    result = std::move(text);
    resultType = ResultType_Double;
}

// Checks for null itself, because the host maker's own Set may not accept a null handle.
std::string setText(VexaArbParam value) {
    return value == 0 ? toolbox::Set().toString() : toolbox::Set(reinterpret_cast<Set_s*>(value)).toString();
}

std::string textOf(VexaArbParam value, ResultType_e type) {
    switch (type) {
        case ResultType_Set: return setText(value);
        case ResultType_String: return value == 0 ? "" : reinterpret_cast<const char*>(value);
        default: return std::to_string(value);
    }
}

}  // namespace

void getValueAsString(std::vector<std::string>& path, long offset1, long offset2, ResultType_e& resultType,
                      GetValueReturnCode_e& returnCode, std::string& result) {
    resultType = ResultType_None;
    static_cast<void>(path.at(0));
    ArgList_s* list = VexaUtilArgListAlloc();
    if (list == nullptr) {
        returnCode = GetValueReturnCode_NotAvailable;
        return;
    }
    const StyleQuery query(list, path, offset1, offset2);
    double number = 0.0;
    returnCode = query.ask(&number);
    if (returnCode == GetValueReturnCode_Ok) {
        setNumber(number, resultType, result);
    } else if (returnCode == GetValueReturnCode_OtherType) {
        VexaUtilArgListClear(list);
        VexaArbParam value = 0;
        returnCode = query.ask(&value);
        const ResultType_e type = typeOf(path.back());
        result = textOf(value, type);
        resultType = type;
    }
    VexaUtilArgListDealloc(&list);
}

}  // namespace vexa::vexautilutil
