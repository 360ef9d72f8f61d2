#include "commands/manual/ManualCommand.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <string>

#include "commands/manual/Completion.h"
#include "commands/manual/ManPage.h"

namespace vexa::runner {

void addManualCommand(CLI::App& app, Action& chosen) {
    const auto form = std::make_shared<std::string>();
    CLI::App& command = *app.add_subcommand("manual", "Print the manual")->group("");
    command.add_option("FORM", *form, "man, or bash for its completion")
        ->required()
        ->check(CLI::IsMember({"man", "bash"}));
    command.callback([&app, form, &chosen] {
        chosen = [&app, form] {
            std::fputs((*form == "man" ? manPage(app) : bashCompletion(app)).c_str(), stdout);
            return ExitStatus_e::AllWell;
        };
    });
}

}  // namespace vexa::runner
