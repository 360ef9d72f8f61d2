// A host that copies arguments into a list, finds them there, and knows one style value. The smallest host implements
// the other functions. The linker takes the functions of this file first.
#include <cstring>
#include <new>
#include <string>
#include <variant>
#include <vector>

#include "vexa/VexaUtil.h"

struct ArgList_s {
    struct Argument {
        std::string name;
        std::variant<std::string, long, double*, VexaArbParam*> value;
    };
    std::vector<Argument> arguments;

    template <class Value>
    const Value* find(const char* name) const {
        for (const Argument& argument : arguments) {
            if (argument.name == name) return std::get_if<Value>(&argument.value);
        }
        return nullptr;
    }
};

namespace {

template <class Value>
VexaBoolean append(ArgList_s* list, const char* name, Value value) {
    list->arguments.push_back({name, std::move(value)});
    return 1;
}

}  // namespace

#pragma GCC visibility push(default)

extern "C" {

ArgList_s* VexaUtilArgListAlloc() { return new (std::nothrow) ArgList_s; }

void VexaUtilArgListDealloc(ArgList_s** argList) {
    delete *argList;
    *argList = nullptr;
}

void VexaUtilArgListClear(ArgList_s* argList) { argList->arguments.clear(); }

VexaBoolean VexaUtilArgListAppendString(ArgList_s* argList, const char* name, const char* value) {
    return append(argList, name, std::string(value));
}

VexaBoolean VexaUtilArgListAppendInt(ArgList_s* argList, const char* name, long value) {
    return append(argList, name, value);
}

VexaBoolean VexaUtilArgListAppendDoublePtr(ArgList_s* argList, const char* name, double* value) {
    return append(argList, name, value);
}

VexaBoolean VexaUtilArgListAppendArbParamPtr(ArgList_s* argList, const char* name, VexaArbParam* value) {
    return append(argList, name, value);
}

// The only settings are "LineThickness", a double, and "Count", an integer.
GetValueReturnCode_e VexaUtilStyleGetLowLevelX(ArgList_s* argList) {
    const std::string* const last = argList->find<std::string>("P2");
    if (last == nullptr) return GetValueReturnCode_UnknownPath;
    double* const* const number = argList->find<double*>("DValue");
    VexaArbParam* const* const param = argList->find<VexaArbParam*>("IValue");
    if (*last == "LineThickness" && number != nullptr) {
        **number = 0.4;
        return GetValueReturnCode_Ok;
    }
    if (*last == "Count" && param != nullptr) {
        **param = 12;
        return GetValueReturnCode_Ok;
    }
    return *last == "Count" ? GetValueReturnCode_OtherType : GetValueReturnCode_UnknownPath;
}

}  // extern "C"

#pragma GCC visibility pop
