#include "trace/ScopeTracks.h"

#include <algorithm>

namespace vexa::runner {
namespace {

using standin::CallEvent;
using standin::HostFunctionInfo;
using standin::ScopeRole_e;
using Time = std::chrono::steady_clock::time_point;

constexpr std::string_view kMutex = "mutex";
constexpr std::string_view kStatusLine = "status line";
constexpr char kHandleSign = '#';

bool isOfMutex(const HostFunctionInfo& function) { return function.scope == kMutex; }

// The status line and mutexes do not nest: the host has one status line, and a thread cannot lock a mutex twice.
bool nests(const HostFunctionInfo& function) { return !isOfMutex(function) && function.scope != kStatusLine; }

bool doesBegin(const HostFunctionInfo& function, const CallEvent& call) {
    return function.role == ScopeRole_e::Begins ||
           (function.role == ScopeRole_e::BeginsOrEnds && call.arguments != "0");
}

std::string nameOf(const HostFunctionInfo& function, const CallEvent& call) {
    return isOfMutex(function) ? call.arguments : function.scope;
}

}  // namespace

ScopeTracks::ScopeTracks() {
    for (const HostFunctionInfo& function : standin::hostFunctions()) {
        if (function.role != ScopeRole_e::None) m_functions.emplace(function.name, &function);
    }
}

std::vector<ScopeEdge> ScopeTracks::entryEnded(Time time) {
    const std::size_t depth = m_depth--;
    return endWhile([&](const Track& track) { return track.kind != kMutex && track.open.back().depth >= depth; }, time);
}

std::vector<ScopeEdge> ScopeTracks::callBegan(const CallEvent& call) {
    const HostFunctionInfo* const function = scopeFunction(call);
    if (function == nullptr || doesBegin(*function, call)) return {};
    Track* const track = trackToEndOn(*function, nameOf(*function, call));
    if (track == nullptr) return {};
    return {end(*track, call.time)};
}

std::vector<ScopeEdge> ScopeTracks::callEnded(const CallEvent& call) {
    const HostFunctionInfo* const function = scopeFunction(call);
    if (function == nullptr || call.threw || !doesBegin(*function, call)) return {};
    const std::string name = nameOf(*function, call);
    Track* const track = trackToBeginOn(*function, name);
    if (track == nullptr) return {};
    track->open.push_back({m_depth, name});
    track->last = std::max(track->last, call.time);
    return {{true, track->number, track->name, name, call.arguments, track->last}};
}

std::vector<ScopeEdge> ScopeTracks::endAll(Time time) {
    return endWhile([](const Track&) { return true; }, time);
}

// Null and invalid handles are not locked.
const HostFunctionInfo* ScopeTracks::scopeFunction(const CallEvent& call) const {
    const auto found = m_functions.find(call.function);
    if (found == m_functions.end()) return nullptr;
    const bool isOfNoMutex = isOfMutex(*found->second) && call.arguments.find(kHandleSign) == std::string::npos;
    return isOfNoMutex ? nullptr : found->second;
}

// Uses the first free track, so that there are only as many as mutexes are locked at once.
ScopeTracks::Track* ScopeTracks::trackToBeginOn(const HostFunctionInfo& function, const std::string& name) {
    if (!nests(function) && trackToEndOn(function, name) != nullptr) return nullptr;
    std::size_t ofKind = 0;
    for (Track& track : m_tracks) {
        if (track.kind != std::string_view(function.scope)) continue;
        if (!isOfMutex(function) || track.open.empty()) return &track;
        ++ofKind;
    }
    const std::string number = isOfMutex(function) ? ' ' + std::to_string(ofKind + 1) : "";
    m_tracks.push_back({m_tracks.size() + 1, function.scope + number, function.scope, {}, {}});
    return &m_tracks.back();
}

ScopeTracks::Track* ScopeTracks::trackToEndOn(const HostFunctionInfo& function, const std::string& name) {
    const auto found = std::find_if(m_tracks.begin(), m_tracks.end(), [&](const Track& track) {
        return track.kind == std::string_view(function.scope) && !track.open.empty() && track.open.back().name == name;
    });
    return found == m_tracks.end() ? nullptr : &*found;
}

template <class Predicate>
std::vector<ScopeEdge> ScopeTracks::endWhile(const Predicate& isOver, Time time) {
    std::vector<ScopeEdge> edges;
    for (Track& track : m_tracks) {
        while (!track.open.empty() && isOver(track)) edges.push_back(end(track, time));
    }
    return edges;
}

// The calls of several threads may not arrive in the order of their times.
ScopeEdge ScopeTracks::end(Track& track, Time time) {
    const std::string name = track.open.back().name;
    track.open.pop_back();
    track.last = std::max(track.last, time);
    return {false, track.number, track.name, name, "", track.last};
}

}  // namespace vexa::runner
