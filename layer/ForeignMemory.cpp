#include "layer/ForeignMemory.h"

#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>

#include "contract/messages/EventMessage.h"

namespace vexa::layer {

bool readMemory(const void* from, void* to, std::size_t size) {
    const iovec source{const_cast<void*>(from), size};
    const iovec target{to, size};
    return process_vm_readv(getpid(), &target, 1, &source, 1, 0) == static_cast<ssize_t>(size);
}

std::string readText(const char* address) {
    std::string text(standin::kLongestText, '\0');
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    std::size_t size = 0;
    while (size < text.size()) {
        const std::size_t toPageEnd = page - (reinterpret_cast<std::uintptr_t>(address) + size) % page;
        const std::size_t piece = std::min(text.size() - size, toPageEnd);
        if (!readMemory(address + size, text.data() + size, piece)) break;
        size += piece;
        if (text.find('\0', size - piece) < size) break;
    }
    text.resize(std::min(text.find('\0'), size));
    return text;
}

}  // namespace vexa::layer
