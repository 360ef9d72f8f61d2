#include <unistd.h>

#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "commands/Commands.h"
#include "commands/lsp/Frames.h"
#include "commands/lsp/LanguageServer.h"
#include "formats/DescriptionFile.h"
#include "options/CommonOptions.h"
#include "system/Descriptor.h"
#include "system/LastError.h"
#include "system/files/StandardStreams.h"
#include "terminal/Console.h"
#include "terminal/Terminal.h"

namespace vexa::runner {
namespace {

constexpr const char* kLspFooter = R"(An editor starts this command and speaks the language server protocol with it on
the standard input and output. While the user types, the editor shows the
mistakes that 'vexa-standin lint' finds, completes commands and options, shows
their help, lists the commands of a macro, and formats it.

The server reads the descriptions that the options name, and each
NAME.commands.json beside the macro and in the folder that the editor has open.
It reads them again when they change.

Example, in the settings of an editor:
  vexa-standin lsp --addon build/libstats.so

Exit status:
  0  the editor ended the session
  1  the input ended without a request to shut down
  2  wrong usage; the input or output failed)";

struct LspOptions {
    std::vector<std::string> addOns;
    std::vector<std::string> descriptions;
    bool usesStandardStreams = true;  // there is no other way
};

std::string whyNoStandardInput(const std::string& path) { return isStandardInput(path) ? whyNoStream("-") : ""; }

std::vector<std::string> filesOf(const LspOptions& options) {
    std::vector<std::string> files = options.descriptions;
    for (const std::string& addOn : options.addOns) files.push_back(descriptionBeside(addOn));
    return files;
}

void send(const std::string& message) {
    if (!writeAll(STDOUT_FILENO, framed(message))) throwLastError();
}

ExitStatus_e serve(const LspOptions& options) {
    LanguageServer server(filesOf(options), send);
    FrameReader input(STDIN_FILENO);
    while (!server.hasEnded()) {
        const InputFrame frame = input.next();
        if (frame.kind == InputFrame::Kind_e::End) break;
        if (frame.kind == InputFrame::Kind_e::Message) server.take(frame.text);
        if (frame.kind == InputFrame::Kind_e::Refused) server.reportLost(frame.text);
    }
    return server.wasShutDown() ? ExitStatus_e::AllWell : ExitStatus_e::CommandFailed;
}

ExitStatus_e run(const LspOptions& options) {
    chooseColour(false);  // editors show messages as they are
    try {
        return serve(options);
    } catch (const std::system_error& error) {
        tell(kProgramName, "the connection to the editor failed: " + error.code().message());
        return ExitStatus_e::BadUsageOrInput;
    }
}

}  // namespace

Command lspCommand() {
    const auto options = std::make_shared<LspOptions>();
    Command command{"lsp", "Help editors with macro files, as a language server", kLspFooter};
    command.add(option({"--addon"}, "FILE", "An add-on; the description beside it is read", &options->addOns)
                    .check(whyNoStream));
    command.add(option({"--describe"}, "FILE", "A description of an add-on's commands", &options->descriptions)
                    .check(whyNoStandardInput));
    command.add(
        flag({"--stdio"}, "Accepted because some editors pass it; changes nothing", &options->usesStandardStreams));
    command.run = [options] { return run(*options); };
    return command;
}

}  // namespace vexa::runner
