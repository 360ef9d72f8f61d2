#include "AddOns.h"

#include "Console.h"

namespace vexa::runner {

bool loadAddOns(standin::Host& host, const std::vector<std::string>& files) {
    bool allLoaded = true;
    for (const std::string& file : files) {
        try {
            host.loadAddOn(file);
        } catch (const standin::LoadError& error) {
            tell(error.message());
            allLoaded = false;
        }
    }
    return allLoaded;
}

void unloadAddOns(standin::Host& host) {
    for (const std::string& warning : host.unloadAddOns()) tell("warning", warning);
}

}  // namespace vexa::runner
