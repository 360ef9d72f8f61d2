#include "layer/CodeObjects.h"

#include <dlfcn.h>
#include <elf.h>

#include <unistd.h>
#include <array>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <set>
#include <string>

#include "contract/BuildId.h"

namespace vexa::layer {
namespace {

using standin::CodeObject;

std::mutex theGuard;

// Never destroyed, because the loader unmaps objects until the process is gone.
std::set<const link_map*>& addOnObjects() {
    static auto* const objects = new std::set<const link_map*>;
    return *objects;
}

bool isOfAddOn(const link_map* object) {
    const std::lock_guard<std::mutex> lock(theGuard);
    return addOnObjects().count(object) != 0;
}

// The loader maps the headers of an object with its first segment.
std::string buildIdOf(const dl_find_object& found) {
    const auto* const begin = static_cast<const unsigned char*>(found.dlfo_map_start);
    const auto size = static_cast<std::size_t>(static_cast<const unsigned char*>(found.dlfo_map_end) - begin);
    const auto* const header = reinterpret_cast<const Elf64_Ehdr*>(begin);
    if (size < sizeof *header || std::memcmp(header->e_ident, ELFMAG, SELFMAG) != 0) return "";
    if (header->e_phoff + header->e_phnum * sizeof(Elf64_Phdr) > size) return "";
    return standin::buildIdOf(reinterpret_cast<const Elf64_Phdr*>(begin + header->e_phoff), header->e_phnum,
                              found.dlfo_link_map->l_addr);
}

}  // namespace

std::string pathOf(const link_map& object) {
    std::array<char, PATH_MAX> path{};
    if (*object.l_name == '\0') {
        const ssize_t size = readlink("/proc/self/exe", path.data(), path.size());
        return size < 0 ? "" : std::string(path.data(), static_cast<std::size_t>(size));
    }
    return realpath(object.l_name, path.data()) == nullptr ? object.l_name : path.data();
}

void noteAddOnObject(const link_map* object) {
    const std::lock_guard<std::mutex> lock(theGuard);
    addOnObjects().insert(object);
}

void forgetAddOnObject(const link_map* object) {
    const std::lock_guard<std::mutex> lock(theGuard);
    addOnObjects().erase(object);
}

std::shared_ptr<const CodeObject> CodeObjects::objectAt(std::uintptr_t address) {
    dl_find_object found{};
    if (_dl_find_object(reinterpret_cast<void*>(address), &found) != 0) return nullptr;
    std::shared_ptr<const CodeObject>& known = m_known[found.dlfo_link_map];
    if (known == nullptr) {
        const link_map& map = *found.dlfo_link_map;
        known = std::make_shared<CodeObject>(CodeObject{map.l_addr, pathOf(map), buildIdOf(found), isOfAddOn(&map)});
    }
    return known;
}

}  // namespace vexa::layer
