#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "contract/CodeStacks.h"

namespace vexa::standin {

/// The objects in the memory of this process.
///
/// What the process had loaded before its first add-on belongs to the host, and the rest to add-ons.
/// Threads: one thread at a time may use the object.
class CodeObjects final : public CodeObjectsInterface {
public:
    std::shared_ptr<const CodeObject> objectAt(std::uintptr_t address) override;
    void forget() override;

private:
    struct Segment {
        std::uintptr_t begin;
        std::uintptr_t end;
        std::shared_ptr<const CodeObject> object;
    };

    void read();
    const Segment* find(std::uintptr_t address) const;

    bool m_isRead = false;
    std::vector<std::uintptr_t> m_hosts;  // where the objects of the host are loaded
    std::vector<Segment> m_segments;      // with code
};

}  // namespace vexa::standin
