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

// The host has one status line, and a thread cannot lock a mutex twice.
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
    std::vector<ScopeEdge> edges;
    for (std::size_t track = 0; track != m_tracks.size(); ++track) {
        const std::vector<Scope>& open = m_tracks[track].open;
        while (m_tracks[track].kind != kMutex && !open.empty() && open.back().depth >= m_depth) {
            edges.push_back(end(track, time));
        }
    }
    --m_depth;
    return edges;
}

std::optional<ScopeEdge> ScopeTracks::callBegan(const CallEvent& call) {
    const HostFunctionInfo* const function = scopeFunction(call);
    if (function == nullptr || doesBegin(*function, call)) return std::nullopt;
    const auto track = trackToEndOn(*function, nameOf(*function, call));
    return track ? std::optional<ScopeEdge>(end(*track, call.time)) : std::nullopt;
}

std::optional<ScopeEdge> ScopeTracks::callEnded(const CallEvent& call) {
    const HostFunctionInfo* const function = scopeFunction(call);
    if (function == nullptr || call.threw || !doesBegin(*function, call)) return std::nullopt;
    const std::string name = nameOf(*function, call);
    const auto track = trackToBeginOn(*function, name);
    return track ? std::optional<ScopeEdge>(begin(*track, name, call)) : std::nullopt;
}

std::vector<ScopeEdge> ScopeTracks::endAll(Time time) {
    std::vector<ScopeEdge> edges;
    for (std::size_t track = 0; track != m_tracks.size(); ++track) {
        while (!m_tracks[track].open.empty()) edges.push_back(end(track, time));
    }
    return edges;
}

// Null and invalid handles are not locked.
const HostFunctionInfo* ScopeTracks::scopeFunction(const CallEvent& call) const {
    const auto found = m_functions.find(call.function);
    if (found == m_functions.end()) return nullptr;
    const bool isOfNoMutex = isOfMutex(*found->second) && call.arguments.find(kHandleSign) == std::string::npos;
    return isOfNoMutex ? nullptr : found->second;
}

std::size_t ScopeTracks::newTrack(const char* kind, const std::string& name) {
    m_tracks.push_back({name, kind, {}, {}});
    return m_tracks.size() - 1;
}

// Uses the first free track, so that there are only as many as mutexes are locked at once.
std::optional<std::size_t> ScopeTracks::trackToBeginOn(const HostFunctionInfo& function, const std::string& name) {
    if (!nests(function) && trackToEndOn(function, name)) return std::nullopt;
    std::size_t ofKind = 0;
    for (std::size_t track = 0; track != m_tracks.size(); ++track) {
        if (m_tracks[track].kind != std::string_view(function.scope)) continue;
        if (!isOfMutex(function) || m_tracks[track].open.empty()) return track;
        ++ofKind;
    }
    return newTrack(function.scope, function.scope + (isOfMutex(function) ? ' ' + std::to_string(ofKind + 1) : ""));
}

std::optional<std::size_t> ScopeTracks::trackToEndOn(const HostFunctionInfo& function, const std::string& name) const {
    const auto found = std::find_if(m_tracks.begin(), m_tracks.end(), [&](const Track& track) {
        return track.kind == std::string_view(function.scope) && !track.open.empty() && track.open.back().name == name;
    });
    if (found == m_tracks.end()) return std::nullopt;
    return static_cast<std::size_t>(found - m_tracks.begin());
}

ScopeEdge ScopeTracks::begin(std::size_t track, const std::string& name, const CallEvent& call) {
    m_tracks[track].open.push_back({m_depth, name});
    m_tracks[track].last = std::max(m_tracks[track].last, call.time);
    return {true, track + 1, m_tracks[track].name, name, call.arguments, m_tracks[track].last};
}

// The calls of several threads may not arrive in the order of their times.
ScopeEdge ScopeTracks::end(std::size_t track, Time time) {
    Track& ended = m_tracks[track];
    const std::string name = ended.open.back().name;
    ended.open.pop_back();
    ended.last = std::max(ended.last, time);
    return {false, track + 1, ended.name, name, "", ended.last};
}

}  // namespace vexa::runner
