#include "stacks/MappedObjects.h"

#include <fstream>
#include <sstream>
#include <string>
#include <utility>

namespace vexa::runner {
namespace {

// A line of /proc/PID/maps.
struct Mapping {
    GElf_Addr begin = 0;
    GElf_Addr end = 0;
    bool isCode = false;
    bool isStart = false;  // of the file
    std::string name;      // a path, or a name such as "[vdso]"; empty for memory without a file
};

Mapping mappingOf(const std::string& line) {
    Mapping mapping;
    std::istringstream in(line);
    std::string access;
    std::string device;
    std::string number;  // of the file
    GElf_Addr offset = 0;
    char dash = '-';
    in >> std::hex >> mapping.begin >> dash >> mapping.end >> access >> offset >> device >> number;
    mapping.isCode = access.find('x') != std::string::npos;
    mapping.isStart = offset == 0;
    std::getline(in >> std::ws, mapping.name);
    return mapping;
}

// Mappings of a file in a row. The loader begins with the start of the file, and maps code.
class Object {
public:
    Object() = default;
    explicit Object(Mapping mapping) : m_mapping(std::move(mapping)) {}

    /// Adds the next mapping of a file.
    /// \return false if it begins another object.
    bool add(const Mapping& next) {
        if (next.name != m_mapping.name || next.isStart) return false;
        m_mapping.end = next.end;
        m_mapping.isCode = m_mapping.isCode || next.isCode;
        return true;
    }
    void reportTo(Dwfl* session) const {
        if (!m_mapping.isCode) return;
        dwfl_report_module(session, m_mapping.name.c_str(), m_mapping.begin, m_mapping.end);
    }

private:
    Mapping m_mapping;
};

bool hasFile(const Mapping& mapping) {
    return !mapping.name.empty() && (mapping.name[0] == '/' || mapping.name == "[vdso]");
}

}  // namespace

bool reportMappedObjects(Dwfl* session, pid_t process) {
    std::ifstream maps("/proc/" + std::to_string(process) + "/maps");
    Object object;
    std::string line;
    bool isAny = false;
    while (std::getline(maps, line)) {
        const Mapping mapping = mappingOf(line);
        if (!hasFile(mapping) || object.add(mapping)) continue;
        object.reportTo(session);
        object = Object(mapping);
        isAny = true;
    }
    object.reportTo(session);
    return isAny;
}

}  // namespace vexa::runner
