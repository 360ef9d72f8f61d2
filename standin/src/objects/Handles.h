#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace vexa::standin {

/// The living objects of one kind. Add-ons have handles to them.
///
/// Handles are compared and never followed, so any value may be passed. An object in use outlives its removal.
/// Threads: safe from any.
template <class Object, class Handle = Object>
class Handles {
public:
    /// Adds \p object, known as \p handle.
    void add(const Handle* handle, std::shared_ptr<Object> object) {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_entries.emplace(handle, Entry{std::move(object), m_added + 1});
        ++m_added;
    }

    /// The object behind \p handle; null if it belongs to no living object.
    std::shared_ptr<Object> find(const Handle* handle) const {
        const std::lock_guard<std::mutex> lock(m_guard);
        const auto found = m_entries.find(handle);
        return found == m_entries.end() ? nullptr : found->second.object;
    }

    /// How many objects live.
    std::size_t count() const {
        const std::lock_guard<std::mutex> lock(m_guard);
        return m_entries.size();
    }

    /// The number of the object behind \p handle, counted from 1; 0 if it belongs to no living object.
    std::size_t numberOf(const Handle* handle) const {
        const std::lock_guard<std::mutex> lock(m_guard);
        const auto found = m_entries.find(handle);
        return found == m_entries.end() ? 0 : found->second.number;
    }

    /// Removes the object behind \p handle.
    /// \return false if \p handle belongs to no living object.
    bool remove(const Handle* handle) {
        const std::lock_guard<std::mutex> lock(m_guard);
        if (m_entries.erase(handle) == 0) return false;
        m_removed[m_nextRemoved++ % m_removed.size()] = handle;
        return true;
    }

    /// Whether \p handle was removed recently and has not been given to another object since.
    bool isRemoved(const Handle* handle) const {
        const std::lock_guard<std::mutex> lock(m_guard);
        return m_entries.count(handle) == 0 && std::find(m_removed.begin(), m_removed.end(), handle) != m_removed.end();
    }

    /// Calls \p act with each living object. \p act must not use this object.
    template <class Action>
    void forEach(const Action& act) const {
        const std::lock_guard<std::mutex> lock(m_guard);
        for (const auto& [handle, entry] : m_entries) act(*entry.object);
    }

private:
    struct Entry {
        std::shared_ptr<Object> object;
        std::size_t number;
    };

    mutable std::mutex m_guard;
    std::unordered_map<const Handle*, Entry> m_entries;
    std::size_t m_added = 0;
    std::array<const Handle*, 256> m_removed{};  // a ring buffer, so that removing needs no memory
    std::size_t m_nextRemoved = 0;
};

}  // namespace vexa::standin
