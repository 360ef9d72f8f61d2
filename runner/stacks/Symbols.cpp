#include "stacks/Symbols.h"

#include <dwarf.h>
#include <elfutils/libdw.h>
#include <elfutils/libdwfl.h>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "contract/BuildId.h"
#include "stacks/DwflSession.h"
#include "system/files/ElfFile.h"

namespace vexa::runner {
namespace {

constexpr Dwfl_Callbacks kCallbacks = {dwfl_build_id_find_elf, dwfl_standard_find_debuginfo,
                                       dwfl_offline_section_address, &DwflSession::debugPath};

bool hasCode(int tag) {
    return tag == DW_TAG_subprogram || tag == DW_TAG_inlined_subroutine || tag == DW_TAG_lexical_block;
}

bool hasMembers(int tag) { return tag == DW_TAG_namespace || tag == DW_TAG_class_type || tag == DW_TAG_structure_type; }

// Adds the entries of functions around `address` to `functions`, the innermost first: an inlined function is within the
// function that it is inlined into. The function dwarf_getscopes() would not look into namespaces.
bool addFunctionsAt(Dwarf_Die& parent, Dwarf_Addr address, std::vector<Dwarf_Die>& functions) {
    Dwarf_Die child;
    for (int error = dwarf_child(&parent, &child); error == 0; error = dwarf_siblingof(&child, &child)) {
        const int tag = dwarf_tag(&child);
        if (hasMembers(tag) && addFunctionsAt(child, address, functions)) return true;
        if (!hasCode(tag) || dwarf_haspc(&child, address) != 1) continue;
        addFunctionsAt(child, address, functions);
        if (tag != DW_TAG_lexical_block) functions.push_back(child);
        return true;
    }
    return false;
}

std::string nameOf(Dwarf_Die& function) {
    Dwarf_Attribute attribute;
    for (const unsigned kind : {unsigned{DW_AT_linkage_name}, unsigned{DW_AT_MIPS_linkage_name}}) {
        const char* const mangled = dwarf_formstring(dwarf_attr_integrate(&function, kind, &attribute));
        if (mangled != nullptr) return demangled(mangled);
    }
    const char* const name = dwarf_diename(&function);
    return name == nullptr ? "" : name;
}

std::string absolute(const char* file, Dwarf_Die& unit) {
    if (file == nullptr) return "";
    Dwarf_Attribute attribute;
    const char* const folder = dwarf_formstring(dwarf_attr(&unit, DW_AT_comp_dir, &attribute));
    const std::filesystem::path path = folder == nullptr ? file : std::filesystem::path(folder) / file;
    return path.lexically_normal().string();
}

struct Line {
    std::string file;
    std::size_t number = 0;  // 0 if the compiler gave no line
};

Line lineAt(Dwarf_Die& unit, Dwarf_Addr address) {
    Dwarf_Line* const line = dwarf_getsrc_die(&unit, address);
    int number = 0;
    if (line == nullptr || dwarf_lineno(line, &number) != 0 || number <= 0) return {};
    std::string file = absolute(dwarf_linesrc(line, nullptr, nullptr), unit);
    return file.empty() ? Line() : Line{std::move(file), static_cast<std::size_t>(number)};
}

// The file of the unit whose number an attribute has.
std::string fileOf(Dwarf_Attribute* attribute, Dwarf_Die& unit) {
    constexpr std::string_view kNoFile = "???";  // number 0 in old versions of the format
    Dwarf_Word number = 0;
    Dwarf_Files* files = nullptr;
    if (dwarf_formudata(attribute, &number) != 0 || dwarf_getsrcfiles(&unit, &files, nullptr) != 0) return "";
    const char* const file = dwarf_filesrc(files, number, nullptr, nullptr);
    return file == nullptr || file == kNoFile ? "" : absolute(file, unit);
}

// The line in which the function around calls the inlined function.
Line lineOfCall(Dwarf_Die& inlined, Dwarf_Die& unit) {
    Dwarf_Attribute attribute;
    Dwarf_Word line = 0;
    if (dwarf_formudata(dwarf_attr(&inlined, DW_AT_call_line, &attribute), &line) != 0 || line == 0) return {};
    std::string path = fileOf(dwarf_attr(&inlined, DW_AT_call_file, &attribute), unit);
    return path.empty() ? Line() : Line{std::move(path), static_cast<std::size_t>(line)};
}

// dwarf_decl_file() does not know that number 0 is a file in version 5 of the format.
Line lineOfDeclaration(Dwarf_Die& function, Dwarf_Die& unit) {
    Dwarf_Attribute attribute;
    int line = 0;
    if (dwarf_decl_line(&function, &line) != 0 || line <= 0) return {};
    std::string path = fileOf(dwarf_attr_integrate(&function, DW_AT_decl_file, &attribute), unit);
    return path.empty() ? Line() : Line{std::move(path), static_cast<std::size_t>(line)};
}

}  // namespace

// A program or shared object whose file is open.
class Symbols::Object {
public:
    explicit Object(const std::string& path) : m_session(dwfl_begin(&kCallbacks)) {
        if (m_session == nullptr) return;
        dwfl_report_begin(m_session.get());
        m_module = dwfl_report_offline(m_session.get(), path.c_str(), path.c_str(), -1);
        dwfl_report_end(m_session.get(), nullptr, nullptr);
        if (m_module == nullptr || dwfl_module_getelf(m_module, &m_begin) == nullptr) m_module = nullptr;
    }

    bool mayBe(const std::string& buildId) const {
        if (m_module == nullptr) return false;
        const unsigned char* bytes = nullptr;
        GElf_Addr address = 0;
        const int count = dwfl_module_build_id(m_module, &bytes, &address);
        if (buildId.empty()) return true;
        return count > 0 && standin::hexOf(bytes, static_cast<std::size_t>(count)) == buildId;
    }

    // Returns the frames by debug information; none if there is none for this place.
    Stack linesAt(std::uintptr_t offset) const {
        Dwarf_Addr bias = 0;
        Dwarf_Die* const unit = unitAt(offset, bias);
        if (unit == nullptr) return {};
        const Dwarf_Addr address = m_begin + offset - bias;
        Stack frames;
        Line line = lineAt(*unit, address);
        std::vector<Dwarf_Die> functions;
        addFunctionsAt(*unit, address, functions);
        for (Dwarf_Die& function : functions) {
            frames.push_back({nameOf(function), line.file, line.number, "", offsetIn(function, address)});
            line = lineOfCall(function, *unit);
        }
        return frames;
    }

    // Returns the function by debug information; nothing if there is none for this place.
    std::optional<Frame> functionAt(std::uintptr_t offset) const {
        Dwarf_Addr bias = 0;
        Dwarf_Die* const unit = unitAt(offset, bias);
        if (unit == nullptr) return std::nullopt;
        std::vector<Dwarf_Die> functions;
        addFunctionsAt(*unit, m_begin + offset - bias, functions);
        if (functions.empty()) return std::nullopt;
        Dwarf_Die& function = functions.back();
        Line line = lineOfDeclaration(function, *unit);
        if (line.number == 0) return std::nullopt;
        return Frame{nameOf(function), std::move(line.file), line.number, "", 0};
    }

    // Returns the frame by the symbol table, without object; no function if no symbol covers the place.
    Frame symbolAt(std::uintptr_t offset) const {
        GElf_Off inSymbol = 0;
        GElf_Sym symbol{};
        const char* const name =
            dwfl_module_addrinfo(m_module, m_begin + offset, &inSymbol, &symbol, nullptr, nullptr, nullptr);
        if (name == nullptr || inSymbol >= symbol.st_size) return {"", "", 0, "", offset};
        return {demangled(name), "", 0, "", inSymbol};
    }

private:
    // Compilers need not write the table of addresses that would make the search short.
    Dwarf_Die* unitAt(std::uintptr_t offset, Dwarf_Addr& bias) const {
        Dwarf_Die* unit = nullptr;
        while ((unit = dwfl_module_nextcu(m_module, unit, &bias)) != nullptr) {
            if (dwarf_haspc(unit, m_begin + offset - bias) == 1) return unit;
        }
        return nullptr;
    }

    static std::uintptr_t offsetIn(Dwarf_Die& function, Dwarf_Addr address) {
        Dwarf_Addr begin = 0;
        return dwarf_entrypc(&function, &begin) == 0 && begin <= address ? address - begin : 0;
    }

    DwflSession::Owner m_session;
    Dwfl_Module* m_module = nullptr;  // null if the file cannot be read
    GElf_Addr m_begin = 0;            // where libdwfl put the object
};

Symbols::Symbols() = default;

Symbols::~Symbols() = default;

// Returns null if the file cannot be read, or was built again.
const Symbols::Object* Symbols::find(const std::string& object, const std::string& buildId) {
    std::unique_ptr<Object>& known = m_objects[object];
    if (known == nullptr) known = std::make_unique<Object>(object);
    return known->mayBe(buildId) ? known.get() : nullptr;
}

Frame Symbols::functionAt(const std::string& object, std::uintptr_t offset, const std::string& buildId) {
    const Object* const known = find(object, buildId);
    if (known == nullptr) return {"", "", 0, object, offset};
    Frame frame = known->functionAt(offset).value_or(known->symbolAt(offset));
    frame.object = object;
    return frame;
}

Stack Symbols::framesAt(const std::string& object, std::uintptr_t offset, const std::string& buildId) {
    const Object* const known = find(object, buildId);
    if (known == nullptr) return {{"", "", 0, object, offset}};
    Stack frames = known->linesAt(offset);
    if (frames.empty()) frames.push_back(known->symbolAt(offset));
    for (Frame& frame : frames) frame.object = object;
    return frames;
}

}  // namespace vexa::runner
