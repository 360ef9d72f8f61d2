#include "session/StopPlace.h"

#include <iterator>
#include <sstream>

namespace vexa::runner {
namespace {

constexpr const char* kNames[] = {"problem", "rule", "call", "command", "failure", "hang", "crash"};

bool hasNumber(StopEvent_e event) { return event == StopEvent_e::Call || event == StopEvent_e::Command; }

}  // namespace

std::string textOf(const StopPlace& place) {
    const std::string name = kNames[static_cast<std::size_t>(place.event)];
    if (place.event == StopEvent_e::Rule) return name + ' ' + place.rule;
    return hasNumber(place.event) ? name + ' ' + std::to_string(place.number) : name;
}

std::optional<StopPlace> stopPlaceOf(const std::string& text) {
    std::istringstream words(text);
    std::string name;
    words >> name;
    for (std::size_t i = 0; i != std::size(kNames); ++i) {
        if (name != kNames[i]) continue;
        StopPlace place{static_cast<StopEvent_e>(i)};
        if (place.event == StopEvent_e::Rule) words >> place.rule;
        if (hasNumber(place.event)) words >> place.number;
        const bool isWhole = !words.fail();
        return isWhole && (words >> std::ws).eof() ? std::optional(place) : std::nullopt;
    }
    return std::nullopt;
}

}  // namespace vexa::runner
