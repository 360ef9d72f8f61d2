// What an add-on has besides its entry, and keeps to itself: names that are visible by default, and what the standard
// library makes of them.
#include <map>
#include <string>

struct __attribute__((visibility("default"))) Named {
    std::map<std::string, int> m_names;
    inline static int s_count = 0;
};

__attribute__((visibility("default"))) void countName(Named& named, const std::string& name) {
    named.s_count = ++named.m_names[name];
}
