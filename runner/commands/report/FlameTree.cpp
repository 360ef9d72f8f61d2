#include "commands/report/FlameTree.h"

#include <algorithm>

#include "text/ShortText.h"

namespace vexa::runner {
namespace {

using Kind_e = TracedSpan::Kind_e;

constexpr std::size_t kMostNames = 1000;
constexpr std::size_t kMostEntryNames = 700;  // leaves names for host functions
constexpr std::size_t kMostNodes = 20000;
constexpr std::size_t kRoot = 0;
constexpr std::size_t kOtherNames = 1;

template <class Open>
auto placeOf(Open& open, std::size_t index) {
    return std::find_if(open.begin(), open.end(), [=](const auto& one) { return one.index == index; });
}

}  // namespace

FlameTree::FlameTree() : m_nodes(1), m_names{"the run", "others"} {}

void FlameTree::began(std::size_t index, const TracedSpan& span, const std::string& trackName) {
    Open open = {index, span.kind, nameOf(span.name, span.kind == Kind_e::Entry ? kMostEntryNames : kMostNames), kRoot,
                 span.start};
    if (span.kind == Kind_e::Scope) {
        m_newScopes.push_back(open);
        return;
    }
    Thread& thread = m_threads[span.track];
    elapse(thread, span.start);
    thread.name = nameOf(trackName, kMostNames);
    thread.open.push_back(open);
    place(thread);
}

void FlameTree::ended(std::size_t index, const TracedSpan& span, std::int64_t time) {
    if (span.kind == Kind_e::Scope) {
        for (auto& [track, thread] : m_threads) close(thread, index, time);
        const auto unused = placeOf(m_newScopes, index);
        if (unused != m_newScopes.end()) m_newScopes.erase(unused);
        return;
    }
    Thread& thread = m_threads[span.track];
    close(thread, index, time);
    if (span.kind != Kind_e::Call || m_newScopes.empty()) return;
    thread.open.insert(thread.open.end(), m_newScopes.begin(), m_newScopes.end());
    m_newScopes.clear();
    place(thread);
}

void FlameTree::elapse(Thread& thread, std::int64_t time) {
    if (!thread.open.empty()) m_nodes[thread.open.back().node].self += std::max<std::int64_t>(time - thread.last, 0);
    thread.last = time;
}

void FlameTree::close(Thread& thread, std::size_t index, std::int64_t time) {
    const auto open = placeOf(thread.open, index);
    if (open == thread.open.end()) return;
    elapse(thread, time);
    Node& node = m_nodes[open->node];
    ++node.count;
    node.longest = std::max(node.longest, time - open->start);
    thread.open.erase(open);
    place(thread);
}

// Finds the nodes of what is open, because an outer scope may end before an inner call.
void FlameTree::place(Thread& thread) {
    const auto isEntry = [](const Open& open) { return open.kind == Kind_e::Entry; };
    const bool hasEntry = std::any_of(thread.open.begin(), thread.open.end(), isEntry);
    std::size_t node = hasEntry || thread.open.empty() ? kRoot : child(kRoot, thread.name);
    for (Open& open : thread.open) open.node = node = child(node, open.name);
}

std::size_t FlameTree::nameOf(const std::string& text, std::size_t mostNames) {
    const auto known = m_nameNumbers.find(text);
    if (known != m_nameNumbers.end()) return known->second;
    if (m_names.size() >= mostNames) return kOtherNames;
    m_names.push_back(shortText(text));
    m_nameNumbers.emplace(text, m_names.size() - 1);
    return m_names.size() - 1;
}

// All nodes beyond the limit are one.
std::size_t FlameTree::child(std::size_t parent, std::size_t name) {
    const auto known = m_children.find({parent, name});
    if (known != m_children.end()) return known->second;
    if (m_nodes.size() >= kMostNodes && (parent != kRoot || name != kOtherNames)) return child(kRoot, kOtherNames);
    m_nodes.push_back({parent, name, 0, 0, 0});
    return m_children[{parent, name}] = m_nodes.size() - 1;
}

}  // namespace vexa::runner
