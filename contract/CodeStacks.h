#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "contract/UnwoundFrame.h"
#include "vexastandin/Finding.h"

namespace vexa::standin {

/// A program or a shared object in memory.
struct CodeObject {
    std::uintptr_t loadedAt = 0;  ///< what to subtract from an address to get that in the symbol table
    std::string path;
    std::string buildId;
    bool isOfAddOn = false;
};

/// Knows the objects in memory. A host implements it.
class CodeObjectsInterface {
public:
    CodeObjectsInterface() = default;
    CodeObjectsInterface(const CodeObjectsInterface&) = delete;
    CodeObjectsInterface& operator=(const CodeObjectsInterface&) = delete;
    virtual ~CodeObjectsInterface() = default;

    /// Returns the object with the code at \p address; null if there is none.
    virtual std::shared_ptr<const CodeObject> objectAt(std::uintptr_t address) = 0;
    /// An add-on is about to be loaded or unloaded: what is in memory will change.
    virtual void forget() = 0;
};

/// Returns the exception that the calling thread handles; null if it handles none.
using HandledException = const void* (*)();

/// Keeps each stack from which the host was called once, so that noting a stack again costs little.
///
/// Walking a stack takes longer than most host calls, and loops make the same calls. So the object keeps where on the
/// stack the return addresses are. If they are still there, the stack is the same.
///
/// Threads: one thread at a time may use the object.
class CodeStacks {
public:
    CodeStacks(CodeObjectsInterface& objects, HandledException handled) : m_objects(objects), m_handled(handled) {}

    /// Returns the stack of the calling thread.
    std::shared_ptr<const CodeStack> capture();
    /// Returns a stack that has only \p function; null for null.
    std::shared_ptr<const CodeStack> of(const void* function);
    /// Returns the stack that threw \p exception; null if there is no note of it.
    std::shared_ptr<const CodeStack> ofThrow(const void* exception);
    /// Returns the stack that threw the exception that the calling thread handles; null if there is no note of it.
    std::shared_ptr<const CodeStack> ofHandledException() { return ofThrow(m_handled()); }
    /// An add-on is about to be loaded or unloaded: the same addresses may soon mean other code.
    void forget();

private:
    struct Slot {
        const std::uintptr_t* at;  // where on the stack the return address is
        std::uintptr_t value;
    };
    // A stack as it was in memory.
    struct Image {
        const void* frame = nullptr;  // of capture()
        std::size_t count = 0;
        std::array<Slot, kMostCalls> slots{};
        std::shared_ptr<const CodeStack> stack;
    };
    struct Walk;
    struct LessByPlaces {
        bool operator()(const std::shared_ptr<const CodeStack>& left,
                        const std::shared_ptr<const CodeStack>& right) const;
    };

    std::shared_ptr<const CodeStack> keep(const std::vector<std::uintptr_t>& addresses);
    const Image* findImage(const void* frame) const;

    CodeObjectsInterface& m_objects;
    const HandledException m_handled;
    std::map<std::vector<std::uintptr_t>, std::shared_ptr<const CodeStack>> m_stacks;  // by addresses
    // All stacks, also those from before an add-on was loaded again: it makes the same calls as before.
    std::set<std::shared_ptr<const CodeStack>, LessByPlaces> m_kept;
    std::array<Image, 16> m_images{};  // of the last stacks that were walked
    std::size_t m_nextImage = 0;
};

}  // namespace vexa::standin
