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
    R"(The project builds, runs and passes its tests. It has one command with two
options, a unit test, macros with their expected results, files for GitHub and
GitLab that build, test and check it, and tasks for VS Code.

Examples:
  vexa-standin new wake-probe
  vexa-standin new wake-probe --id WAKE --title "Wake of a cylinder"

Exit status:
  0  the project was written
  2  wrong usage, or the project could not be written and left no file)";

struct NewOptions {
    std::string folder;
    std::optional<std::string> id;
    std::optional<std::string> title;
    EditorFiles_e editorFiles = EditorFiles_e::Written;
};

ExitStatus_e writeNewProject(const NewOptions& options) {
    ProjectNames names = namesFor(options.folder);
    if (options.id) names.id = *options.id;
    if (options.title) names.title = *options.title;
    writeProject(options.folder, names, options.editorFiles);
    print(printableLine(options.folder + ": the project of the add-on " + names.id) +
          ". Build it, and run its tests:\n" + "  cd " + shellWord(options.folder) + "\n" +
          "  cmake --preset release && cmake --build --preset release && ctest --preset release\n");
    return ExitStatus_e::AllWell;
}

}  // namespace

Command newCommand() {
    const auto options = std::make_shared<NewOptions>();
    Command command{"new", "Write the project of a new add-on", kNewFooter};
    command.add(argument("FOLDER", "The folder to write to; it must be new or empty. Its name becomes the CMake target",
                         &options->folder)
                    .require()
                    .check(whyNoStream));
    command.add(
        option({"--id"}, "ID", "The add-on's id in macros; by default made from the folder's name", &options->id)
            .check(whyNoId));
    command.add(option({"--title"}, "TEXT", "The add-on's title for users; by default made from the folder's name",
                       &options->title)
                    .check(whyNoTitle));
    command.add(flag({"--editor"}, "Write files for editors: VS Code, clangd and Vim (default)",
                     [options] { options->editorFiles = EditorFiles_e::Written; }));
    command.add(flag({"--no-editor"}, "Do not write files for editors",
                     [options] { options->editorFiles = EditorFiles_e::LeftOut; }));
    command.check = [options] {
        if (options->folder.empty()) throw UsageError("FOLDER: expected a name");
    };
    command.run = [options] { return writeNewProject(*options); };
    return command;
}

}  // namespace vexa::runner
