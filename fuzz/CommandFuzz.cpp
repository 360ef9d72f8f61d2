// Parses whole commands: a name, then options of all types. The text of an accepted command must be read back to the
// same text.

#include <optional>

#include "Fuzz.h"
#include "Options.h"
#include "SteppedRanges.h"
#include "vexautilutil/MacroCommandAbstract.h"
#include "vexautilutil/MacroCommandError.h"

namespace vexa::fuzz {
namespace {

using vexautilutil::MacroTokenIterator;

class Command : public vexautilutil::MacroCommandAbstract {
public:
    using MacroCommandAbstract::MacroCommandAbstract;
    void execute() override {}
};

// Returns the text of the command read from `text`; nothing if it is refused.
std::optional<std::string> rendered(const std::string& text) {
    const auto stream = Command::tokenize(text);
    const MacroTokenIterator end = stream.end();
    MacroTokenIterator current = stream.begin();
    try {
        Command command(vexautilutil::parseIdentifier(current, end));
        while (current != end) {
            if (*current == " ") {
                ++current;
                continue;
            }
            command.addOption(readOption(current, end));
        }
        return command.toString();
    } catch (const vexautilutil::MacroCommandError&) {
        return std::nullopt;
    }
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    const std::string text = textOf(data, size);
    if (mayHaveManyMembers(text)) return 0;
    const auto command = rendered(text);
    if (command) require(rendered(*command) == command, "a command reads its own text back", *command);
    return 0;
}
