#include "ListCommand.h"

#include <algorithm>
#include <cstdio>

#include "AddOns.h"
#include "TextWidth.h"

namespace vexa::runner {
namespace {

constexpr const char* kColumnGap = "  ";
constexpr const char* kNoTitle = "-";

std::string titleOf(const standin::AddOnInfo& addOn) { return addOn.title.empty() ? kNoTitle : addOn.title; }

std::string padded(const std::string& text, std::size_t width) {
    return text + std::string(width - widthOf(text), ' ');
}

std::string tableOf(const std::vector<standin::AddOnInfo>& addOns) {
    std::size_t idWidth = 0;
    std::size_t titleWidth = 0;
    for (const standin::AddOnInfo& addOn : addOns) {
        idWidth = std::max(idWidth, widthOf(addOn.id));
        titleWidth = std::max(titleWidth, widthOf(titleOf(addOn)));
    }
    std::string table;
    for (const standin::AddOnInfo& addOn : addOns) {
        table += padded(addOn.id, idWidth) + kColumnGap + padded(titleOf(addOn), titleWidth) + kColumnGap + addOn.path +
                 '\n';
    }
    return table;
}

}  // namespace

ExitStatus_e listAddOns(const std::vector<std::string>& files) {
    standin::Host host;
    host.setKeepsCalls(false);
    const bool allLoaded = loadAddOns(host, files);
    if (allLoaded) std::fputs(tableOf(host.addOns()).c_str(), stdout);
    unloadAddOns(host);
    return allLoaded ? ExitStatus_e::AllWell : ExitStatus_e::BadUsageOrInput;
}

}  // namespace vexa::runner
