#pragma once

#include <elf.h>
#include <link.h>

#include <cstddef>
#include <cstdint>

namespace vexa::layer {

/// A part of an object that the loader has mapped as a whole.
struct Segment {
    std::uintptr_t begin = 0;
    std::size_t size = 0;
    int protection = 0;  ///< as for mprotect()
};

/// The symbols of a shared object or program that the loader has mapped.
class ElfImage {
public:
    explicit ElfImage(const link_map& map);

    /// The address of the function that the object exports as \p name; null if it exports none.
    void* findFunction(const char* name) const;

    /// Lets the loader find \p target in the place of the function that the object exports as \p name.
    void redirectExport(const char* name, void* target) const;

    /// Lets the loader bind symbols of other objects to functions of our choice. The loader must not have bound them
    /// yet. It keeps to this for each kind of binding: early and lazy, calls and addresses of functions.
    /// \param targetOf is called with the name of each function that the object imports; null leaves it to the loader.
    void redirectImports(void* (*targetOf)(const char* name)) const;

private:
    const Elf64_Sym* find(const char* name) const;
    const Elf64_Sym* findByGnuHash(const char* name) const;
    const Elf64_Sym* findByHash(const char* name) const;
    bool isCalled(const Elf64_Sym& symbol, const char* name) const;
    Segment segmentOf(const void* address) const;

    struct Relocations {
        const Elf64_Rela* first = nullptr;
        std::size_t size = 0;  // in bytes
    };

    std::uintptr_t m_base = 0;
    Elf64_Sym* m_symbols = nullptr;
    const char* m_names = nullptr;
    const std::uint32_t* m_hash = nullptr;
    const std::uint32_t* m_gnuHash = nullptr;
    Relocations m_relocations;
    Relocations m_callRelocations;
};

}  // namespace vexa::layer
