#include "system/files/ElfFile.h"

#include <cxxabi.h>
#include <gelf.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>

namespace vexa::runner {
namespace {

std::string text(Elf* elf, const GElf_Shdr& section, std::size_t offset) {
    const char* const found = elf_strptr(elf, section.sh_link, offset);
    return found == nullptr ? "" : found;
}

// Calls `take` with each entry of a section that is a table.
template <class Take>
void forEachEntry(Elf_Scn* section, const GElf_Shdr& header, const Take& take) {
    Elf_Data* const data = elf_getdata(section, nullptr);
    if (data == nullptr || header.sh_entsize == 0) return;
    for (int i = 0; i != static_cast<int>(header.sh_size / header.sh_entsize); ++i) take(data, i);
}

void takeRunPaths(ElfFile& file, const std::string& paths) {
    std::istringstream in(paths);
    for (std::string path; std::getline(in, path, ':');) file.runPaths.push_back(path);
}

void takeDynamic(ElfFile& file, Elf* elf, Elf_Scn* section, const GElf_Shdr& header) {
    forEachEntry(section, header, [&](Elf_Data* data, int i) {
        GElf_Dyn entry;
        if (gelf_getdyn(data, i, &entry) == nullptr) return;
        const auto value = entry.d_un.d_val;
        switch (entry.d_tag) {
            case DT_NEEDED: file.needed.push_back(text(elf, header, value)); break;
            case DT_RPATH:
            case DT_RUNPATH: takeRunPaths(file, text(elf, header, value)); break;
            case DT_TEXTREL: file.hasTextRelocations = true; break;
            case DT_FLAGS: file.hasTextRelocations |= (value & DF_TEXTREL) != 0; break;
            case DT_FLAGS_1: file.isNeverUnloaded |= (value & DF_1_NODELETE) != 0; break;
            default: break;
        }
    });
}

void takeSymbols(ElfFile& file, Elf* elf, Elf_Scn* section, const GElf_Shdr& header) {
    forEachEntry(section, header, [&](Elf_Data* data, int i) {
        GElf_Sym symbol;
        if (gelf_getsym(data, i, &symbol) == nullptr) return;
        const auto visibility = GELF_ST_VISIBILITY(symbol.st_other);
        const auto binding = GELF_ST_BIND(symbol.st_info);
        const bool isOfOthersConcern = binding != STB_LOCAL && visibility != STV_HIDDEN && visibility != STV_INTERNAL;
        if (!isOfOthersConcern) return;
        file.symbols.push_back({text(elf, header, symbol.st_name), symbol.st_shndx != SHN_UNDEF, binding == STB_GLOBAL,
                                binding == STB_GNU_UNIQUE});
    });
}

void takeSections(ElfFile& file, Elf* elf) {
    Elf_Scn* section = nullptr;
    while ((section = elf_nextscn(elf, section)) != nullptr) {
        GElf_Shdr header;
        if (gelf_getshdr(section, &header) == nullptr) continue;
        if (header.sh_type == SHT_DYNAMIC) takeDynamic(file, elf, section, header);
        if (header.sh_type == SHT_DYNSYM) takeSymbols(file, elf, section, header);
    }
}

std::string interpreterOf(Elf* elf) {
    std::size_t count = 0;
    std::size_t size = 0;
    elf_getphdrnum(elf, &count);
    const char* const bytes = elf_rawfile(elf, &size);
    for (std::size_t i = 0; bytes != nullptr && i != count; ++i) {
        GElf_Phdr header;
        if (gelf_getphdr(elf, static_cast<int>(i), &header) == nullptr || header.p_type != PT_INTERP) continue;
        if (header.p_offset > size || header.p_filesz > size - header.p_offset) return "";
        return {bytes + header.p_offset, strnlen(bytes + header.p_offset, header.p_filesz)};
    }
    return "";
}

// A file without an entry for its stack gets an executable stack.
bool hasExecutableStack(Elf* elf) {
    std::size_t count = 0;
    elf_getphdrnum(elf, &count);
    for (std::size_t i = 0; i != count; ++i) {
        GElf_Phdr header;
        const bool isStack =
            gelf_getphdr(elf, static_cast<int>(i), &header) != nullptr && header.p_type == PT_GNU_STACK;
        if (isStack) return (header.p_flags & PF_X) != 0;
    }
    return true;
}

}  // namespace

ElfFile readElfFile(const std::string& path) {
    elf_version(EV_CURRENT);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> in(std::fopen(path.c_str(), "re"), std::fclose);
    const std::unique_ptr<Elf, int (*)(Elf*)> elf(
        in != nullptr ? elf_begin(fileno(in.get()), ELF_C_READ, nullptr) : nullptr, elf_end);
    GElf_Ehdr header;
    if (elf_kind(elf.get()) != ELF_K_ELF || gelf_getehdr(elf.get(), &header) == nullptr) {
        throw ElfError("it is no shared object");
    }
    ElfFile file;
    file.fileClass = header.e_ident[EI_CLASS];
    file.machine = header.e_machine;
    file.type = header.e_type;
    file.hasExecutableStack = hasExecutableStack(elf.get());
    file.interpreter = interpreterOf(elf.get());
    takeSections(file, elf.get());
    return file;
}

std::string demangled(const std::string& symbol) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text(
        abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status), &std::free);
    return text == nullptr ? symbol : text.get();
}

}  // namespace vexa::runner
