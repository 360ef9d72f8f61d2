// In C++, the host catches what escapes from an add-on.
#include "Guard.h"

#include <cstdio>
#include <exception>

int callGuarded(Work_f work, void* data, char* why, int size) {
    try {
        work(data);
        return 1;
    } catch (const std::exception& exception) {
        std::snprintf(why, static_cast<std::size_t>(size), "the add-on threw: %s", exception.what());
    } catch (...) {
        std::snprintf(why, static_cast<std::size_t>(size), "the add-on threw");
    }
    return 0;
}
