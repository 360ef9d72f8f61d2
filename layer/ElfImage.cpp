#include "layer/ElfImage.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <optional>

namespace vexa::layer {
namespace {

constexpr unsigned kBitsOfWord = 64;  // of the filter in a GNU hash table

std::uint32_t gnuHashOf(const char* name) {
    std::uint32_t hash = 5381;
    for (; *name != '\0'; ++name) hash = hash * 33 + static_cast<unsigned char>(*name);
    return hash;
}

std::uint32_t hashOf(const char* name) {
    std::uint32_t hash = 0;
    for (; *name != '\0'; ++name) {
        hash = (hash << 4) + static_cast<unsigned char>(*name);
        hash ^= (hash & 0xf0000000U) >> 24;
        hash &= 0x0fffffffU;
    }
    return hash;
}

bool isExportedFunction(const Elf64_Sym& symbol) {
    const auto binding = ELF64_ST_BIND(symbol.st_info);
    const auto type = ELF64_ST_TYPE(symbol.st_info);
    const auto visibility = ELF64_ST_VISIBILITY(symbol.st_other);
    return symbol.st_shndx != SHN_UNDEF && symbol.st_value != 0 && (type == STT_FUNC || type == STT_NOTYPE) &&
           (binding == STB_GLOBAL || binding == STB_WEAK) && (visibility == STV_DEFAULT || visibility == STV_PROTECTED);
}

int protectionOf(Elf64_Word flags) {
    return ((flags & PF_R) != 0 ? PROT_READ : 0) | ((flags & PF_W) != 0 ? PROT_WRITE : 0) |
           ((flags & PF_X) != 0 ? PROT_EXEC : 0);
}

// Lets this process write to a segment as long as it lives.
class WritablePages {
public:
    explicit WritablePages(const Segment& segment) : m_protection(segment.protection) {
        const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
        const std::uintptr_t first = segment.begin & ~(page - 1);
        m_begin = reinterpret_cast<void*>(first);
        m_size = segment.begin + segment.size - first;
        m_areWritable = m_size != 0 && mprotect(m_begin, m_size, m_protection | PROT_WRITE) == 0;
    }
    WritablePages(const WritablePages&) = delete;
    WritablePages& operator=(const WritablePages&) = delete;
    ~WritablePages() {
        if (m_areWritable) mprotect(m_begin, m_size, m_protection);
    }

    bool areWritable() const { return m_areWritable; }

private:
    void* m_begin;
    std::size_t m_size;
    int m_protection;
    bool m_areWritable;
};

bool isImport(const Elf64_Sym& symbol) {
    return symbol.st_shndx == SHN_UNDEF && ELF64_ST_BIND(symbol.st_info) != STB_LOCAL;
}

// An absolute symbol is not moved with its object.
void setTarget(Elf64_Sym& symbol, void* target) {
    symbol.st_shndx = SHN_ABS;
    symbol.st_value = reinterpret_cast<Elf64_Addr>(target);
}

// The loader binds a hidden local symbol to the object's own.
void bindTo(Elf64_Sym& symbol, void* target) {
    symbol.st_info = ELF64_ST_INFO(STB_LOCAL, STT_FUNC);
    symbol.st_other = STV_HIDDEN;
    setTarget(symbol, target);
}

}  // namespace

ElfImage::ElfImage(const link_map& map) : m_base(map.l_addr) {
    // The loader has turned most of these into addresses; the others are offsets still.
    const auto addressOf = [&](const Elf64_Dyn& entry) {
        const std::uintptr_t value = entry.d_un.d_ptr;
        return value < m_base ? m_base + value : value;
    };
    for (const Elf64_Dyn* entry = map.l_ld; entry != nullptr && entry->d_tag != DT_NULL; ++entry) {
        switch (entry->d_tag) {
            case DT_SYMTAB: m_symbols = reinterpret_cast<Elf64_Sym*>(addressOf(*entry)); break;
            case DT_STRTAB: m_names = reinterpret_cast<const char*>(addressOf(*entry)); break;
            case DT_HASH: m_hash = reinterpret_cast<const std::uint32_t*>(addressOf(*entry)); break;
            case DT_RELA: m_relocations.first = reinterpret_cast<const Elf64_Rela*>(addressOf(*entry)); break;
            case DT_RELASZ: m_relocations.size = entry->d_un.d_val; break;
            case DT_JMPREL: m_callRelocations.first = reinterpret_cast<const Elf64_Rela*>(addressOf(*entry)); break;
            case DT_PLTRELSZ: m_callRelocations.size = entry->d_un.d_val; break;
            case DT_GNU_HASH: m_gnuHash = reinterpret_cast<const std::uint32_t*>(addressOf(*entry)); break;
            default: break;
        }
    }
}

void* ElfImage::findFunction(const char* name) const {
    const Elf64_Sym* const symbol = find(name);
    return symbol == nullptr ? nullptr : reinterpret_cast<void*>(m_base + symbol->st_value);
}

void ElfImage::redirectExport(const char* name, void* target) const {
    const Elf64_Sym* const symbol = find(name);
    const WritablePages pages(segmentOf(m_symbols));
    if (symbol != nullptr && pages.areWritable()) setTarget(m_symbols[symbol - m_symbols], target);
}

void ElfImage::redirectImports(void* (*targetOf)(const char* name)) const {
    if (m_symbols == nullptr || m_names == nullptr) return;
    std::optional<WritablePages> pages;
    for (const Relocations& relocations : {m_relocations, m_callRelocations}) {
        for (std::size_t i = 0; i != relocations.size / sizeof(Elf64_Rela); ++i) {
            Elf64_Sym& symbol = m_symbols[ELF64_R_SYM(relocations.first[i].r_info)];
            if (!isImport(symbol)) continue;
            void* const target = targetOf(m_names + symbol.st_name);
            if (target == nullptr) continue;
            if (!pages) pages.emplace(segmentOf(m_symbols));
            if (!pages->areWritable()) return;
            bindTo(symbol, target);
        }
    }
}

const Elf64_Sym* ElfImage::find(const char* name) const {
    if (m_symbols == nullptr || m_names == nullptr) return nullptr;
    if (m_gnuHash != nullptr) return findByGnuHash(name);
    return m_hash == nullptr ? nullptr : findByHash(name);
}

const Elf64_Sym* ElfImage::findByGnuHash(const char* name) const {
    const std::uint32_t buckets = m_gnuHash[0];
    const std::uint32_t firstHashed = m_gnuHash[1];
    const std::uint32_t words = m_gnuHash[2];
    const std::uint32_t shift = m_gnuHash[3];
    if (buckets == 0 || words == 0) return nullptr;
    const auto* const filter = reinterpret_cast<const std::uint64_t*>(m_gnuHash + 4);
    const auto* const bucket = reinterpret_cast<const std::uint32_t*>(filter + words);
    const std::uint32_t* const chain = bucket + buckets;
    const std::uint32_t hash = gnuHashOf(name);
    const std::uint64_t word = filter[hash / kBitsOfWord % words];
    if (((word >> (hash % kBitsOfWord)) & (word >> ((hash >> shift) % kBitsOfWord)) & 1U) == 0) return nullptr;
    std::uint32_t index = bucket[hash % buckets];
    if (index < firstHashed) return nullptr;
    for (;; ++index) {
        const std::uint32_t found = chain[index - firstHashed];
        if ((found | 1U) == (hash | 1U) && isCalled(m_symbols[index], name)) return &m_symbols[index];
        if ((found & 1U) != 0) return nullptr;  // the end of the chain
    }
}

const Elf64_Sym* ElfImage::findByHash(const char* name) const {
    const std::uint32_t buckets = m_hash[0];
    if (buckets == 0) return nullptr;
    const std::uint32_t* const bucket = m_hash + 2;
    const std::uint32_t* const chain = bucket + buckets;
    for (std::uint32_t index = bucket[hashOf(name) % buckets]; index != STN_UNDEF; index = chain[index]) {
        if (isCalled(m_symbols[index], name)) return &m_symbols[index];
    }
    return nullptr;
}

bool ElfImage::isCalled(const Elf64_Sym& symbol, const char* name) const {
    return isExportedFunction(symbol) && std::strcmp(m_names + symbol.st_name, name) == 0;
}

// The ELF header is at the start of an object that is loaded anywhere.
Segment ElfImage::segmentOf(const void* address) const {
    const auto* const header = reinterpret_cast<const Elf64_Ehdr*>(m_base);
    const auto* const segments = reinterpret_cast<const Elf64_Phdr*>(m_base + header->e_phoff);
    const std::uintptr_t offset = reinterpret_cast<std::uintptr_t>(address) - m_base;
    for (std::size_t i = 0; i != header->e_phnum; ++i) {
        const Elf64_Phdr& segment = segments[i];
        const bool isIn = offset >= segment.p_vaddr && offset - segment.p_vaddr < segment.p_memsz;
        if (segment.p_type != PT_LOAD || !isIn) continue;
        return {m_base + segment.p_vaddr, segment.p_memsz, protectionOf(segment.p_flags)};
    }
    return {};
}

}  // namespace vexa::layer
