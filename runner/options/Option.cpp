#include "options/Option.h"

#include <algorithm>
#include <iterator>

#include "text/StartsWith.h"

namespace vexa::runner {

bool Option::takesFiles() const {
    constexpr const char* kFileNames[] = {"FILE", "FOLDER", "MACRO", "TRACE"};
    return std::any_of(std::begin(kFileNames), std::end(kFileNames),
                       [this](const char* start) { return startsWith(valueName, start); });
}

}  // namespace vexa::runner
