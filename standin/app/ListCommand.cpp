#include "ListCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "AddOns.h"
#include "Console.h"
#include "FindingTeller.h"
#include "Printable.h"
#include "TextWidth.h"

namespace vexa::runner {
namespace {

constexpr const char* kListFooter = R"(Example:
  vexa-standin list ./libstats.so ./libloader.so

Exit status:
  0  all went well
  2  wrong usage, or an add-on could not be loaded)";

constexpr const char* kColumnGap = "  ";
constexpr const char* kNoTitle = "-";

// What stands in a column is on one line, whatever the add-on says.
std::string titleOf(const standin::AddOnInfo& addOn) {
    return addOn.title.empty() ? kNoTitle : printableLine(addOn.title);
}
std::string idOf(const standin::AddOnInfo& addOn) { return printableLine(addOn.id); }

std::string padded(const std::string& text, std::size_t width) {
    return text + std::string(width - widthOf(text), ' ');
}

std::string tableOf(const std::vector<standin::AddOnInfo>& addOns) {
    std::size_t idWidth = 0;
    std::size_t titleWidth = 0;
    for (const standin::AddOnInfo& addOn : addOns) {
        idWidth = std::max(idWidth, widthOf(idOf(addOn)));
        titleWidth = std::max(titleWidth, widthOf(titleOf(addOn)));
    }
    std::string table;
    for (const standin::AddOnInfo& addOn : addOns) {
        table += padded(idOf(addOn), idWidth) + kColumnGap + padded(titleOf(addOn), titleWidth) + kColumnGap +
                 printableLine(addOn.path) + '\n';
    }
    return table;
}

ExitStatus_e listAddOns(const std::vector<std::string>& files) {
    standin::Host host;
    host.setKeepsCalls(false);
    const bool allLoaded = loadAddOns(host, files);
    if (allLoaded) print(tableOf(host.addOns()));
    host.unloadAddOns();
    FindingTeller(host).tellNew();
    return allLoaded ? ExitStatus_e::AllWell : ExitStatus_e::BadUsageOrInput;
}

}  // namespace

void addListCommand(CLI::App& app, Action& chosen) {
    const auto files = std::make_shared<std::vector<std::string>>();
    const auto more = std::make_shared<std::vector<std::string>>();
    CLI::App& list = *app.add_subcommand("list", "List add-ons: id, title, file");
    list.footer(kListFooter);
    list.add_option("FILE.so", *files, "The add-ons")->type_name("");
    addAddOnOption(list, *more).required(false);
    list.callback([files, more, &chosen] {
        files->insert(files->end(), more->begin(), more->end());
        if (files->empty()) throw CLI::RequiredError("FILE.so");
        chosen = [files] { return listAddOns(*files); };
    });
}

}  // namespace vexa::runner
