#include "contract/CallText.h"

namespace vexa::standin {

std::string textOf(const HandleNamesInterface&, const char* text) {
    if (text == nullptr) return "null";
    std::string quoted = "\"";
    for (; *text != '\0'; ++text) {
        switch (*text) {
            case '"': quoted += "\\\""; break;
            case '\\': quoted += "\\\\"; break;
            case '\n': quoted += "\\n"; break;
            case '\r': quoted += "\\r"; break;
            case '\t': quoted += "\\t"; break;
            default: quoted += *text;
        }
    }
    return quoted + '"';
}

std::string textOf(const HandleNamesInterface&, GetValueReturnCode_e code) {
    switch (code) {
        case GetValueReturnCode_Ok: return "GetValueReturnCode_Ok";
        case GetValueReturnCode_OtherType: return "GetValueReturnCode_OtherType";
        case GetValueReturnCode_UnknownPath: return "GetValueReturnCode_UnknownPath";
        case GetValueReturnCode_NotAvailable: return "GetValueReturnCode_NotAvailable";
    }
    return std::to_string(static_cast<int>(code));
}

}  // namespace vexa::standin
