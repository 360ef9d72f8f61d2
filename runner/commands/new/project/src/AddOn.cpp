// The functions that the host calls: the entry of the add-on, and one function that runs every command.
#include "vexa/AddOn.h"

#include <string>

#include "RepeatCommand.h"
#include "vexautilutil/ExecuteCommand.h"
#include "vexautilutil/MacroCommandError.h"

using vexa::vexautilutil::executeCommand;
using vexa::vexautilutil::MacroCommandError;

namespace {

constexpr const char* kId = "@ID@";
constexpr const char* kTitle = "@TITLE_LITERAL@";

// Records the command in the user's macro. Does nothing while the host plays back.
void record(const std::string& command) {
    if (VexaUtilMacroIsRecordingActive() == 0 || VexaUtilStateIsProcessingJournal() != 0 ||
        VexaUtilStateIsProcessingLayout() != 0) {
        return;
    }
    if (VexaUtilMacroRecordExtCommand(kId, command.c_str()) == 0) {
        throw MacroCommandError("The command was not recorded");
    }
}

// To add a command, write a class like RepeatCommand and call it here.
void run(const std::string& text) {
    const std::size_t nameEnd = text.find(' ');
    const std::string name = text.substr(0, nameEnd);
    if (name != RepeatCommand::kName) throw MacroCommandError("Unknown command " + name + "; known is REPEAT");
    RepeatCommand command(nameEnd == std::string::npos ? "" : text.substr(nameEnd));
    command.execute();
    record(command.toString());
}

// The message of an exception from run() becomes the error message of the command.
VexaBoolean execute(const char* text, char** errMsg) {
    return executeCommand([&] { run(text); }, errMsg);
}

constexpr VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, kId, kTitle, execute, nullptr};

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) { return &kDescription; }
