#include "commands/check/tests/Tests.h"

#include <algorithm>

namespace vexa::runner {

const std::vector<CheckTest>& checkTests() {
    static const std::vector<CheckTest> tests = {
        // ---- The add-on itself
        {"load", 1, Needs_e::File, "The add-on is loaded and unloaded.",
         "What cannot be loaded cannot be used; and every other test begins with it.", load},
        {"binary-hygiene", 1, Needs_e::File,
         "All symbols are bound when it is loaded, vexaAddOn alone is exported, no folder of this machine is searched "
         "for libraries, the stack is not executable, and the code is not changed while it is loaded.",
         "What is amiss here works for its author, and fails or is unsafe on the machine of another.", binaryHygiene},
        {"load-unload", 1, Needs_e::Loading,
         "Loaded and unloaded fifty times it leaves nothing behind: no memory, no thread, no mapping of its file.",
         "The host takes an add-on's new version without ending. One that stays loaded keeps the old one; a thread "
         "that it leaves crashes the host.",
         loadAndUnload},

        // ---- The commands
        {"commands-in-order", 1, Needs_e::Commands, "The commands of the macros succeed in their order.",
         "This is how users run them.", commandsInOrder},
        {"commands-alone", 1, Needs_e::Commands, "Each command keeps the contract as the only one after loading.",
         "Users begin with any command. It may fail for want of what should come before, with a message, but not harm "
         "the host.",
         commandsAlone},
        {"commands-twice", 2, Needs_e::Commands, "The commands keep the contract when each is given twice.",
         "Users repeat commands, and a second run meets what the first left behind.", commandsTwice},
        {"commands-random-order", 2, Needs_e::Commands, "The commands keep the contract in any order.",
         "Users give commands in orders that nobody thought of.", commandsInRandomOrder},
        {"commands-from-second-add-on", 2, Needs_e::Commands,
         "The commands of the macros succeed when a command of another add-on has them run.",
         "Add-ons build on one another; the host is then in the middle of a command already.", commandsFromSecondAddOn},

        // ---- The modes of the host
        {"batch-mode", 2, Needs_e::Commands,
         "The commands of the macros succeed in batch mode, and ask nobody to close a dialog.",
         "Overnight nobody is there; a dialog stops the host until the morning.", inBatchMode},
        {"recording-on", 2, Needs_e::Commands, "The commands of the macros succeed while the host records.",
         "Users record macros of what they do.", whileRecording},
        {"journal-playback", 2, Needs_e::Commands,
         "The commands of the macros succeed while the host plays back a journal.",
         "Opening a data set runs the commands of its journal.", duringJournalPlayback},
        {"layout-playback", 2, Needs_e::Commands,
         "The commands of the macros succeed while the host plays back a layout.",
         "Opening a layout runs the commands in it.", duringLayoutPlayback},
        {"record-replay", 2, Needs_e::Commands, "What the commands record can be run, and records the same again.",
         "A recorded macro that fails, or does something else, when it is played back is worse than none.",
         recordAndReplay},

        // ---- What goes wrong around commands
        {"host-call-fails", 2, Needs_e::Loading,
         "Commands of which one call of the host fails, each in turn, fail with a message or succeed, and the same "
         "command works behind them.",
         "Hosts run out of memory, and refuse. What is left behind then shows much later, somewhere else.",
         hostCallFails},
        {"stop-pressed", 2, Needs_e::Commands,
         "Commands that the user stops, at every percentage in turn, end as they should, and work when they are given "
         "again.",
         "Users stop what takes long, and then expect everything to be as before.", stopPressed},
        {"allocation-fails", 3, Needs_e::Loading,
         "Commands of which one allocation fails, each in turn, or all behind it, too, fail or succeed, and the same "
         "command works behind them.",
         "Data grow until memory runs out. The user's work must survive that, and what an add-on says must be true.",
         allocationFails},
        {"mutated-text", 3, Needs_e::Loading,
         "Damaged commands keep the contract: cut, with options dropped, doubled and swapped, with strange bytes and "
         "very long values.",
         "Macros are edited by hand, cut by editors and written by programs. A typing mistake must not end the host.",
         mutatedTexts, true},
    };
    return tests;
}

const CheckTest* findCheckTest(std::string_view name) {
    const std::vector<CheckTest>& all = checkTests();
    const auto found = std::find_if(all.begin(), all.end(), [&](const CheckTest& test) { return name == test.name; });
    return found == all.end() ? nullptr : &*found;
}

}  // namespace vexa::runner
