#include "calls/CodeObjects.h"

#include <link.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "contract/BuildId.h"

namespace vexa::standin {
namespace {

namespace fs = std::filesystem;

// An add-on may change the current folder, so a path must not depend on it.
std::string pathOf(const char* name) {
    std::error_code error;
    if (*name == '\0') return fs::read_symlink("/proc/self/exe", error);
    if (std::string_view(name).find('/') == std::string_view::npos) return name;
    const fs::path path = fs::absolute(name, error);
    return error ? name : path.lexically_normal().string();
}

template <class Take>
void forEachObject(Take take) {
    const auto pass = [](dl_phdr_info* info, std::size_t, void* context) {
        (*static_cast<Take*>(context))(*info);
        return 0;
    };
    dl_iterate_phdr(pass, &take);
}

}  // namespace

std::shared_ptr<const CodeObject> CodeObjects::objectAt(std::uintptr_t address) {
    const Segment* segment = m_isRead ? find(address) : nullptr;
    if (segment == nullptr) {
        read();
        segment = find(address);
    }
    return segment == nullptr ? nullptr : segment->object;
}

void CodeObjects::forget() {
    m_isRead = false;
    if (!m_hosts.empty()) return;
    forEachObject([this](const dl_phdr_info& info) { m_hosts.push_back(info.dlpi_addr); });
}

void CodeObjects::read() {
    m_segments.clear();
    forEachObject([this](const dl_phdr_info& info) {
        auto object = std::make_shared<CodeObject>();
        object->loadedAt = info.dlpi_addr;
        object->path = pathOf(info.dlpi_name);
        object->buildId = buildIdOf(info.dlpi_phdr, info.dlpi_phnum, info.dlpi_addr);
        const bool isHosts = std::find(m_hosts.begin(), m_hosts.end(), info.dlpi_addr) != m_hosts.end();
        object->isOfAddOn = !m_hosts.empty() && !isHosts;
        for (std::size_t i = 0; i != info.dlpi_phnum; ++i) {
            const auto& header = info.dlpi_phdr[i];
            if (header.p_type != PT_LOAD || (header.p_flags & PF_X) == 0) continue;
            const std::uintptr_t begin = info.dlpi_addr + header.p_vaddr;
            m_segments.push_back({begin, begin + header.p_memsz, object});
        }
    });
    m_isRead = true;
}

const CodeObjects::Segment* CodeObjects::find(std::uintptr_t address) const {
    const auto found = std::find_if(m_segments.begin(), m_segments.end(), [address](const Segment& segment) {
        return address >= segment.begin && address < segment.end;
    });
    return found == m_segments.end() ? nullptr : &*found;
}

}  // namespace vexa::standin
