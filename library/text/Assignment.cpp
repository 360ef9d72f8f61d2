#include "text/Assignment.h"

namespace vexa::vexautilutil {

std::string beginAssignment(std::string_view name, std::string_view sign, std::size_t room) {
    std::string text;
    text.reserve(name.size() + sign.size() + room);
    text += name;
    text += sign;
    return text;
}

}  // namespace vexa::vexautilutil
