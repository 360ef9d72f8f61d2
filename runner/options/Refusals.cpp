#include "options/Refusals.h"

#include <vector>

#include "options/ContractOptions.h"
#include "text/Joined.h"
#include "text/NearNames.h"
#include "text/ShortText.h"

namespace vexa::runner {

std::string noSuchRule(const std::string& name) {
    const std::vector<std::string> near = nearNames(name, ruleNames());
    const std::string message = "there is no rule \"" + name + "\"; ";
    return message + (near.empty() ? "'vexa-standin explain' lists them" : "is " + alternatives(near) + " meant?");
}

std::string noSuchTest(const std::string& name) {
    return "there is no test \"" + name + "\"; 'check --list' names them";
}

std::string noSuchAddOn(const std::string& id, const std::set<std::string>& loaded) {
    const std::string name = shortText(id);
    const std::vector<std::string> ids(loaded.begin(), loaded.end());
    std::string message = "no add-on '" + name + "' is loaded";
    if (!ids.empty()) message += " (loaded: " + joined(ids, ", ") + ')';
    const std::vector<std::string> near = nearNames(name, ids);
    return near.empty() ? message : message + "; did you mean " + alternatives(near) + '?';
}

}  // namespace vexa::runner
