#include "session/AddOns.h"

#include <vector>

#include "text/NearNames.h"
#include "text/ShortText.h"

namespace vexa::runner {

std::string noSuchAddOn(const std::string& id, const std::set<std::string>& loaded) {
    const std::string name = shortText(id);
    const std::vector<std::string> ids(loaded.begin(), loaded.end());
    std::string message = "no add-on '" + name + "' is loaded";
    for (const std::string& one : ids) message += (&one == &ids.front() ? " (loaded: " : ", ") + one;
    if (!ids.empty()) message += ')';
    const std::vector<std::string> near = nearNames(name, ids);
    return near.empty() ? message : message + "; did you mean " + alternatives(near) + '?';
}

}  // namespace vexa::runner
