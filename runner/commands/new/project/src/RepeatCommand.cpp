#include "RepeatCommand.h"

#include <cstdio>
#include <memory>

#include "vexautilutil/MacroCommandError.h"
#include "vexautilutil/StringMacroOption.h"
#include "vexautilutil/TaskProgressBar.h"
#include "vexautilutil/UInt64MacroOption.h"

using namespace vexa::vexautilutil;

namespace {

const std::string kDefaultText = "Hello";
constexpr uint64_t kDefaultTimes = 1;
constexpr uint64_t kMostTimes = 1000;

void skipBlanks(MacroTokenIterator& current, const MacroTokenIterator& end) {
    while (current != end && *current == " ") ++current;
}

}  // namespace

RepeatCommand::RepeatCommand(const std::string& options)
    : MacroCommandAbstract(kName), m_text(kDefaultText), m_times(kDefaultTimes) {
    const MacroTokenizer tokens = tokenize(options);
    MacroTokenIterator current = tokens.begin();
    const MacroTokenIterator end = tokens.end();
    for (skipBlanks(current, end); current != end; skipBlanks(current, end)) {
        if (*current == "TEXT") {
            const auto text = std::make_shared<StringMacroOption>(current, end, &kDefaultText);
            m_text = text->value();
            addOption(text);  // added options are recorded, unless they have their default
        } else if (*current == "TIMES") {
            const auto times = std::make_shared<UInt64MacroOption>(current, end, &kDefaultTimes);
            m_times = times->value();
            addOption(times);
        } else {
            throw MacroCommandError("Unknown option of REPEAT: " + *current + "; known are TEXT and TIMES");
        }
    }
    if (m_times > kMostTimes) throw MacroCommandError("TIMES must be 1000 or less");
}

void RepeatCommand::execute() {
    const auto progress = createTaskProgressBar(static_cast<long>(m_times));
    progress->start("Repeating");
    for (uint64_t time = 0; time < m_times; ++time) {
        if (progress->isInterrupted()) throw MacroCommandError("REPEAT was stopped by the user");
        std::puts(m_text.c_str());
        progress->advance();
    }
}
