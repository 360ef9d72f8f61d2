// Measures what getValueAsString() adds to the host calls that it must make, with a host that keeps argument lists.
#include <cstdlib>
#include <string>
#include <vector>

#include "support/Rows.h"
#include "vexa/VexaUtil.h"
#include "vexautilutil/StyleValue.h"

namespace vexa::vexautilutil {
namespace {

using bench::addCall;

void appendPath(ArgList_s* list, const char* keyword) {
    VexaUtilArgListAppendString(list, "P1", "FieldMap");
    VexaUtilArgListAppendString(list, "P2", keyword);
    VexaUtilArgListAppendInt(list, "Offset1", 1);
    VexaUtilArgListAppendInt(list, "Offset2", 2);
}

// For a double, the function queries once.
void askForDouble() {
    ArgList_s* list = VexaUtilArgListAlloc();
    appendPath(list, "LineThickness");
    double value = 0;
    VexaUtilArgListAppendDoublePtr(list, "DValue", &value);
    if (VexaUtilStyleGetLowLevelX(list) != GetValueReturnCode_Ok) std::abort();
    benchmark::DoNotOptimize(value);
    VexaUtilArgListDealloc(&list);
}

// For any other type, it queries twice.
void askForInteger() {
    ArgList_s* list = VexaUtilArgListAlloc();
    appendPath(list, "Count");
    double none = 0;
    VexaUtilArgListAppendDoublePtr(list, "DValue", &none);
    if (VexaUtilStyleGetLowLevelX(list) != GetValueReturnCode_OtherType) std::abort();
    VexaUtilArgListClear(list);
    appendPath(list, "Count");
    VexaArbParam value = 0;
    VexaUtilArgListAppendArbParamPtr(list, "IValue", &value);
    if (VexaUtilStyleGetLowLevelX(list) != GetValueReturnCode_Ok) std::abort();
    benchmark::DoNotOptimize(value);
    VexaUtilArgListDealloc(&list);
}

void ask(std::vector<std::string>& path, ResultType_e expected) {
    ResultType_e type{};
    GetValueReturnCode_e code{};
    std::string text;
    getValueAsString(path, 1, 2, type, code, text);
    if (type != expected) std::abort();
    benchmark::DoNotOptimize(text.data());
}

const bool isAdded = [] {
    static std::vector<std::string> thickness = {"FieldMap", "LineThickness"};
    static std::vector<std::string> count = {"FieldMap", "Count"};
    addCall("style-double/host_calls", askForDouble);
    addCall("style-double/ours", [] { ask(thickness, ResultType_Double); });
    addCall("style-integer/host_calls", askForInteger);
    addCall("style-integer/ours", [] { ask(count, ResultType_Integer); });
    return true;
}();

}  // namespace
}  // namespace vexa::vexautilutil
