#include "commands/Commands.h"

#include <memory>
#include <optional>
#include <string>

#include "commands/new/NewProject.h"
#include "options/CommonOptions.h"
#include "options/UsageError.h"
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

Command newCommand() {
    const auto options = std::make_shared<NewOptions>();
    Command command{"new", "Write the project of a new add-on", kNewFooter};
    command.add(argument("FOLDER", "Where it goes; it must be missing, or empty. Its name is that of the CMake target",
                         &options->folder)
                    .require()
                    .check(whyNoStream));
    command.add(
        option({"--id"}, "ID", "How macros address the add-on; made of the folder's name unless given", &options->id)
            .check(whyNoId));
    command.add(
        option({"--title"}, "TEXT", "The add-on's title for people; as --id", &options->title).check(whyNoTitle));
    command.check = [options] {
        if (options->folder.empty()) throw UsageError("FOLDER: expected a name");
    };
    command.run = [options] { return writeNewProject(*options); };
    return command;
}

}  // namespace vexa::runner
