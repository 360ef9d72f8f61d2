#include "commands/new/NewCommand.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>

#include "commands/new/NewProject.h"
#include "terminal/Console.h"
#include "text/ShellWord.h"

namespace vexa::runner {
namespace {

constexpr const char* kNewFooter =
    R"(The project is complete: it builds, its tests pass, and it runs. It has one
command with two options, a test of it, macros beside what they print and
record, and a script for build servers.

Examples:
  vexa-standin new wake-probe
  vexa-standin new wake-probe --id WAKE --title "Wake of a cylinder"

Exit status:
  0  the project was written
  2  wrong usage, or it could not be written; then nothing was)";

struct NewOptions {
    std::string folder;
    std::optional<std::string> id;
    std::optional<std::string> title;
};

ExitStatus_e writeNewProject(const NewOptions& options) {
    ProjectNames names;
    try {
        names = namesFor(options.folder);
        if (options.id) names.id = *options.id;
        if (options.title) names.title = *options.title;
        writeProject(options.folder, names);
    } catch (const NewProjectError& error) {
        tell(error.what());
        return ExitStatus_e::BadUsageOrInput;
    }
    print(printableLine(options.folder + ": the project of the add-on " + names.id) +
          ". Build it, and run its tests:\n" + "  cd " + shellWord(options.folder) + "\n" +
          "  cmake --preset release && cmake --build --preset release && ctest --preset release\n");
    return ExitStatus_e::AllWell;
}

}  // namespace

void addNewCommand(CLI::App& app, Action& chosen) {
    const auto options = std::make_shared<NewOptions>();
    CLI::App& command = *app.add_subcommand("new", "Write the project of a new add-on");
    command.footer(kNewFooter);
    command
        .add_option("FOLDER", options->folder,
                    "Where it goes; it must be missing, or empty. Its name is that of the CMake target")
        ->required()
        ->check(CLI::Validator(whyNoStream, ""))
        ->type_name("");
    command.add_option("--id", options->id, "How macros address the add-on; made of the folder's name unless given")
        ->check(CLI::Validator(whyNoId, ""))
        ->type_name("ID");
    command.add_option("--title", options->title, "The add-on's title for people; as --id")
        ->check(CLI::Validator(whyNoTitle, ""))
        ->type_name("TEXT");
    command.callback([options, &chosen] {
        if (options->folder.empty()) throw CLI::ValidationError("FOLDER", "expected a name");
        chosen = [options] { return writeNewProject(*options); };
    });
}

}  // namespace vexa::runner
