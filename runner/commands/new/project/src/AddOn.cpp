// What the host calls: the entry, and one function for all commands.
#include "vexa/AddOn.h"

#include <cstring>
#include <exception>
#include <string>

#include "RepeatCommand.h"
#include "vexautilutil/MacroCommandError.h"

using vexa::vexautilutil::MacroCommandError;

namespace {

constexpr const char* kId = "@ID@";
constexpr const char* kTitle = "@TITLE_LITERAL@";

// So that the user's macro has the command, unless the host is playing it back.
void record(const std::string& command) {
    if (VexaUtilMacroIsRecordingActive() == 0 || VexaUtilStateIsProcessingJournal() != 0 ||
        VexaUtilStateIsProcessingLayout() != 0) {
        return;
    }
    if (VexaUtilMacroRecordExtCommand(kId, command.c_str()) == 0) {
        throw MacroCommandError("The command was not recorded");
    }
}

// A further command is a class like RepeatCommand, and a line here.
void run(const std::string& text) {
    const std::size_t nameEnd = text.find(' ');
    const std::string name = text.substr(0, nameEnd);
    if (name != RepeatCommand::kName) throw MacroCommandError("Unknown command " + name + "; known is REPEAT");
    RepeatCommand command(nameEnd == std::string::npos ? "" : text.substr(nameEnd));
    command.execute();
    record(command.toString());
}

// Hands \p message to the host, which owns the copy; without memory for it, there is none.
void explain(const char* message, char** errMsg) noexcept try {
    const std::size_t size = std::strlen(message) + 1;
    *errMsg = VexaUtilStringAlloc(static_cast<int>(size), "error message");
    if (*errMsg != nullptr) std::memcpy(*errMsg, message, size);
} catch (...) {
    *errMsg = nullptr;
}

// No exception may escape to the host.
VexaBoolean execute(const char* text, char** errMsg) {
    try {
        run(text);
        return 1;
    } catch (const std::exception& error) {
        explain(error.what(), errMsg);
    } catch (...) {
        explain("Unknown failure", errMsg);
    }
    return 0;
}

constexpr VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, kId, kTitle, execute, nullptr};

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) { return &kDescription; }
