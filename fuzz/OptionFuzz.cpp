// Parses options from any token stream. The text of an accepted option must be read back to the same option. A refusal
// must be a MacroCommandError.

#include "Fuzz.h"
#include "Options.h"
#include "SteppedRanges.h"
#include "vexautilutil/MacroCommandAbstract.h"
#include "vexautilutil/MacroCommandError.h"

namespace vexa::fuzz {
namespace {

using vexautilutil::MacroCommandAbstract;
using vexautilutil::MacroTokenIterator;

std::string joined(MacroTokenIterator current, const MacroTokenIterator& end) {
    std::string text;
    for (; current != end; ++current) text += *current;
    return text;
}

// Returns the text of the option at the start of `text`, and in `rest` the text after it.
std::string rendered(const std::string& text, std::string& rest) {
    const auto stream = MacroCommandAbstract::tokenize(text);
    MacroTokenIterator current = stream.begin();
    std::string option = readOption(current, stream.end())->toString();
    rest = joined(current, stream.end());
    return option;
}

void tryText(const std::string& text) {
    const auto stream = MacroCommandAbstract::tokenize(text);
    require(joined(stream.begin(), stream.end()) == text, "the tokens joined give the text back", text);
    std::string option;
    std::string rest;
    try {
        option = rendered(text, rest);
    } catch (const vexautilutil::MacroCommandError&) {
        return;
    }
    require(rest.size() < text.size() && text.compare(text.size() - rest.size(), rest.size(), rest) == 0,
            "what is left is the end of the text", text);
    std::string restOfOption;
    require(rendered(option, restOfOption) == option, "an option reads its own text back", option);
    require(restOfOption.empty(), "an option reads all of its own text", option);
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = vexa::fuzz::textOf(data, size);
    if (!vexa::fuzz::mayHaveManyMembers(text)) vexa::fuzz::tryText(text);
    return 0;
}
