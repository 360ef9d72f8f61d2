#include "session/AddOns.h"

#include "terminal/Console.h"

namespace vexa::runner {

bool loadAddOn(standin::Host& host, const std::string& file) {
    try {
        host.loadAddOn(file);
        return true;
    } catch (const standin::LoadError& error) {
        tell(error.message());
        return false;
    }
}

bool loadAddOns(standin::Host& host, const std::vector<std::string>& files, ProcessBox& box) {
    bool allLoaded = true;
    for (const std::string& file : files) {
        const TimeInAddOn time(box, "", "", "loading of " + file);
        allLoaded &= loadAddOn(host, file);
    }
    return allLoaded;
}

std::set<std::string> loadedIds(const standin::Host& host) {
    std::set<std::string> ids;
    for (const standin::AddOnInfo& addOn : host.addOns()) ids.insert(addOn.id);
    return ids;
}

}  // namespace vexa::runner
