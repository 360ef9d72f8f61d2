#pragma once

#include <utility>

#include "probe/questions/Answer.h"
#include "vexa/VexaUtil.h"

namespace vexa::probe {

/// An object of the host, freed by the destructor. The host's functions decide what a null or a kept handle means, so
/// this class never relies on a handle after it was freed.
template <class Handle, void (*kFree)(Handle**)>
class Owned {
public:
    /// \throws Unanswerable if \p handle is null.
    explicit Owned(Handle* handle) : m_handle(handle) {
        if (handle == nullptr) throw Unanswerable("the host returned no object");
    }
    Owned(Owned&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    ~Owned() {
        if (m_handle != nullptr) kFree(&m_handle);
    }

    Handle* get() const { return m_handle; }

    /// Frees the object.
    /// \return whether the host cleared the handle.
    bool isClearedWhenFreed() {
        Handle* handle = std::exchange(m_handle, nullptr);
        kFree(&handle);
        return handle == nullptr;
    }

private:
    Handle* m_handle;
};

using OwnedList = Owned<ArgList_s, VexaUtilArgListDealloc>;
using OwnedMutex = Owned<ThreadMutex_s, VexaUtilThreadMutexDealloc>;
using OwnedSet = Owned<Set_s, VexaUtilSetDealloc>;
using OwnedString = Owned<char, VexaUtilStringDealloc>;

}  // namespace vexa::probe
