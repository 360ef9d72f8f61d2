// Names that an add-on must not export: names with default visibility, and templates of the standard library that use
// them.
#include <map>
#include <string>

struct __attribute__((visibility("default"))) Named {
    std::map<std::string, int> m_names;
    inline static int s_count = 0;
};

__attribute__((visibility("default"))) void countName(Named& named, const std::string& name) {
    named.s_count = ++named.m_names[name];
}
