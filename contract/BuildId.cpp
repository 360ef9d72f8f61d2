#include "contract/BuildId.h"

#include <elf.h>

#include <string_view>

namespace vexa::standin {
namespace {

constexpr char kOwner[] = "GNU";  // with its zero byte

std::size_t padded(std::size_t size) { return (size + 3) / 4 * 4; }

// Returns the build id among the notes from `begin` to `end`; empty if there is none.
std::string buildIdIn(const unsigned char* begin, const unsigned char* end) {
    while (static_cast<std::size_t>(end - begin) > sizeof(ElfW(Nhdr))) {
        const auto* const note = reinterpret_cast<const ElfW(Nhdr)*>(begin);
        const unsigned char* const name = begin + sizeof *note;
        const std::size_t size = sizeof *note + padded(note->n_namesz) + padded(note->n_descsz);
        if (size > static_cast<std::size_t>(end - begin)) break;
        const std::string_view owner(reinterpret_cast<const char*>(name), note->n_namesz);
        const bool isBuildId = note->n_type == NT_GNU_BUILD_ID && owner == std::string_view(kOwner, sizeof kOwner);
        if (isBuildId) return hexOf(name + padded(note->n_namesz), note->n_descsz);
        begin += size;
    }
    return "";
}

}  // namespace

std::string buildIdOf(const ElfW(Phdr) * headers, std::size_t count, std::uintptr_t loadedAt) {
    std::string id;
    for (std::size_t i = 0; i != count && id.empty(); ++i) {
        if (headers[i].p_type != PT_NOTE) continue;
        const auto* const begin = reinterpret_cast<const unsigned char*>(loadedAt + headers[i].p_vaddr);
        id = buildIdIn(begin, begin + headers[i].p_memsz);
    }
    return id;
}

}  // namespace vexa::standin
