#include "vexastandin/StatusLine.h"

#include <tuple>

namespace vexa::standin {
namespace {

auto fieldsOf(const StatusLine& line) {
    return std::tie(line.text, line.percent, line.showStopButton, line.showBar, line.active);
}

}  // namespace

bool operator==(const StatusLine& left, const StatusLine& right) { return fieldsOf(left) == fieldsOf(right); }

bool operator!=(const StatusLine& left, const StatusLine& right) { return !(left == right); }

}  // namespace vexa::standin
