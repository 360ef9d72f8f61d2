// operator new and delete of the layer. The C library's malloc keeps memory for each thread and gives it back when the
// thread ends, but only in the namespace that created the thread. The layer's own C library would lose it.

#include <sys/mman.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <new>

namespace vexa::layer {
namespace {

constexpr std::size_t kLeastSize = 32;
constexpr std::size_t kSizes = 12;  // 32 bytes, 64 bytes, ... 64 KiB
constexpr std::size_t kBlock = std::size_t{256} * 1024;

// Stands before each piece of memory that is in use. Free pieces of a size are a list.
union alignas(std::max_align_t) Head {
    std::size_t size;  // of the piece, with its head
    Head* next;
};

std::mutex theGuard;
std::array<Head*, kSizes> theFreePieces{};
char* theBlock = nullptr;
std::size_t theRest = 0;  // of the block

void* mapped(std::size_t size) {
    void* const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? nullptr : memory;
}

std::size_t indexOf(std::size_t size) {
    std::size_t index = 0;
    while (index != kSizes && kLeastSize << index < size) ++index;
    return index;
}

Head* takePiece(std::size_t index) {
    const std::lock_guard<std::mutex> lock(theGuard);
    if (Head* const piece = theFreePieces[index]) {
        theFreePieces[index] = piece->next;
        return piece;
    }
    const std::size_t size = kLeastSize << index;
    if (theRest < size) {
        char* const block = static_cast<char*>(mapped(kBlock));
        if (block == nullptr) return nullptr;
        theBlock = block;
        theRest = kBlock;
    }
    theRest -= size;
    return reinterpret_cast<Head*>(theBlock + theRest);
}

void* allocate(std::size_t size) noexcept {
    const std::size_t whole = size + sizeof(Head);
    if (whole < size) return nullptr;
    const std::size_t index = indexOf(whole);
    Head* const head = index < kSizes ? takePiece(index) : static_cast<Head*>(mapped(whole));
    if (head == nullptr) return nullptr;
    head->size = index < kSizes ? kLeastSize << index : whole;
    return head + 1;
}

void release(void* memory) noexcept {
    if (memory == nullptr) return;
    Head* const head = static_cast<Head*>(memory) - 1;
    const std::size_t index = indexOf(head->size);
    if (index >= kSizes) {
        munmap(head, head->size);
        return;
    }
    const std::lock_guard<std::mutex> lock(theGuard);
    head->next = theFreePieces[index];
    theFreePieces[index] = head;
}

}  // namespace
}  // namespace vexa::layer

void* operator new(std::size_t size) {
    if (void* const memory = vexa::layer::allocate(size)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return vexa::layer::allocate(size); }
void operator delete(void* memory) noexcept { vexa::layer::release(memory); }
void operator delete(void* memory, std::size_t) noexcept { vexa::layer::release(memory); }
