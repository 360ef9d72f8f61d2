#include <memory>
#include <string>

#include "commands/Commands.h"
#include "commands/docs/DescriptionPage.h"
#include "formats/DescriptionFile.h"
#include "language/DescribedExamples.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

constexpr const char* kFooter = R"(The page has the purpose, the form, the options and the examples of each command.
'vexa-standin check' runs the examples.

Examples:
  vexa-standin docs stats.commands.json >commands.md
  vexa-standin docs stats.commands.json --html >commands.html

Exit status:
  0  the page was printed
  2  wrong usage or input; the page could not be written)";

struct DocsOptions {
    std::string file;
    bool isHtml = false;
    bool isTable = false;
};

ExitStatus_e printPage(const DocsOptions& options) {
    const auto description = readDescription(options.file);
    if (!description || !areExamplesRight(*description, options.file)) return ExitStatus_e::BadUsageOrInput;
    print(options.isHtml    ? htmlPage(*description)
          : options.isTable ? markdownTable(*description)
                            : markdownPage(*description));
    return ExitStatus_e::AllWell;
}

}  // namespace

Command docsCommand() {
    const auto options = std::make_shared<DocsOptions>();
    Command command{"docs", "Print a page about an add-on's commands, made from their description", kFooter};
    command.add(
        argument("FILE", "The description, NAME.commands.json; - reads the standard input", &options->file).require());
    command.add(flag({"--html"}, "Print HTML instead of Markdown", &options->isHtml).exclude("--table"));
    command.add(
        flag({"--table"}, "Print only a table of all options, as Markdown", &options->isTable).exclude("--html"));
    command.run = [options] { return printPage(*options); };
    return command;
}

}  // namespace vexa::runner
