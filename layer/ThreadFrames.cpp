#include "layer/ThreadFrames.h"

#include <pthread.h>

namespace vexa::layer {
namespace {

thread_local ThreadFrames theFrames;

constexpr ThreadFrame kNoFrame{nullptr, nullptr, nullptr};

}  // namespace

ThreadFrames& ThreadFrames::mine() { return theFrames; }

ThreadFrame ThreadFrames::popInside(const void* address) {
    if (m_count == 0) return kNoFrame;
    const void* const last = m_frames[m_count - 1].address;
    return last < address && isOnOwnStack(last) && isOnOwnStack(address) ? popLast() : kNoFrame;
}

ThreadFrame ThreadFrames::pop(const void* address) {
    const bool isThere = m_count != 0 && m_frames[m_count - 1].address == address;
    return isThere ? popLast() : kNoFrame;
}

bool ThreadFrames::isOnOwnStack(const void* address) {
    if (m_stackEnd == nullptr) {
        pthread_attr_t attributes;
        void* begin = nullptr;
        std::size_t size = 0;
        if (pthread_getattr_np(pthread_self(), &attributes) != 0) return false;
        pthread_attr_getstack(&attributes, &begin, &size);
        pthread_attr_destroy(&attributes);
        m_stackBegin = begin;
        m_stackEnd = static_cast<const char*>(begin) + size;
    }
    return address >= m_stackBegin && address < m_stackEnd;
}

}  // namespace vexa::layer
