#include "commands/Commands.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "options/CommonOptions.h"
#include "options/PrintedOutput.h"
#include "options/UsageError.h"
#include "session/FindingPrinter.h"
#include "session/Session.h"
#include "session/WatchedWork.h"
#include "terminal/Console.h"
#include "terminal/TextWidth.h"
#include "text/Printable.h"

namespace vexa::runner {
namespace {

constexpr const char* kListFooter = R"(Example:
  vexa-standin list ./libstats.so ./libloader.so

Exit status:
  0  all went well
  2  wrong usage, or an add-on could not be loaded
  5  an add-on ended its process: a crash, exit() or the like)";

constexpr const char* kColumnGap = "  ";
constexpr const char* kNoTitle = "-";

// Puts the title on one line, because it is a column of a table.
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

ExitStatus_e listHere(const SessionOptions& options, ProcessBox& box) {
    Session session(options, box);
    const bool allLoaded = session.loadAddOns();
    if (allLoaded) print(tableOf(session.host().addOns()));
    session.unloadAddOns();
    FindingPrinter().printNew(session.host());
    return checkOutput(allLoaded ? ExitStatus_e::AllWell : ExitStatus_e::BadUsageOrInput);
}

ExitStatus_e listAddOns(const std::vector<std::string>& files) {
    SessionOptions options;
    options.addOns = files;
    return doWatched(std::nullopt, [&options](ProcessBox& box) { return listHere(options, box); });
}

}  // namespace

Command listCommand() {
    const auto files = std::make_shared<std::vector<std::string>>();
    const auto more = std::make_shared<std::vector<std::string>>();
    Command command{"list", "List add-ons: id, title, file", kListFooter};
    command.add(argument("FILE.so", "The add-ons", files.get()));
    command.add(addOnOption(*more));
    command.check = [files, more] {
        if (files->empty() && more->empty()) throw UsageError("FILE.so is required");
    };
    command.run = [files, more] {
        files->insert(files->end(), more->begin(), more->end());
        return listAddOns(*files);
    };
    return command;
}

}  // namespace vexa::runner
