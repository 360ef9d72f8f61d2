#include "layer/ThreadFrames.h"

#include "layer/MemoryRange.h"

namespace vexa::layer {
namespace {

thread_local ThreadFrames theFrames;

constexpr ThreadFrame kNoFrame{nullptr, nullptr, 0};

}  // namespace

ThreadFrames& ThreadFrames::mine() { return theFrames; }

ThreadFrame ThreadFrames::popLeft(const void* address) {
    if (m_count == 0 || m_frames[m_count - 1].address >= address) return kNoFrame;
    // Addresses of two stacks say nothing about the order of frames.
    return rangeAround(address).has(m_frames[m_count - 1].address) ? popLast() : kNoFrame;
}

ThreadFrame ThreadFrames::pop(const void* address) {
    const bool isThere = m_count != 0 && m_frames[m_count - 1].address == address;
    return isThere ? popLast() : kNoFrame;
}

}  // namespace vexa::layer
