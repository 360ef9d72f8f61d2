#include "options/RuleNames.h"

#include <vector>

#include "text/NearNames.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {

std::string noSuchRule(const std::string& name) {
    std::vector<std::string> rules;
    for (const standin::Rule& rule : standin::rules()) rules.emplace_back(rule.name);
    const std::vector<std::string> near = nearNames(name, rules);
    const std::string message = "there is no rule \"" + name + "\"; ";
    return message + (near.empty() ? "'vexa-standin explain' lists them" : "is " + alternatives(near) + " meant?");
}

}  // namespace vexa::runner
