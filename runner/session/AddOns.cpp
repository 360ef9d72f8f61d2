#include "session/AddOns.h"

#include "terminal/Console.h"
#include "text/NearNames.h"
#include "text/ShortText.h"

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

std::string noSuchAddOn(const std::string& id, const std::set<std::string>& loaded) {
    const std::string name = shortText(id);
    const std::vector<std::string> ids(loaded.begin(), loaded.end());
    std::string message = "no add-on '" + name + "' is loaded";
    for (const std::string& one : ids) message += (&one == &ids.front() ? " (loaded: " : ", ") + one;
    if (!ids.empty()) message += ')';
    const std::vector<std::string> near = nearNames(name, ids);
    return near.empty() ? message : message + "; did you mean " + alternatives(near) + '?';
}

std::set<std::string> loadedIds(const standin::Host& host) {
    std::set<std::string> ids;
    for (const standin::AddOnInfo& addOn : host.addOns()) ids.insert(addOn.id);
    return ids;
}

}  // namespace vexa::runner
