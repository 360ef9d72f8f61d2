#include "commands/check/tests/Tests.h"

#include <algorithm>

namespace vexa::runner {

const std::vector<CheckTest>& checkTests() {
    static const std::vector<CheckTest> tests = {
        // ---- The add-on itself
        {"load", 1, Needs_e::File, "The add-on is loaded and unloaded.",
         "An add-on that cannot be loaded cannot be used, and every other test starts by loading it.", load},
        {"binary-hygiene", 1, Needs_e::File,
         "All symbols are bound when it is loaded, vexaAddOn alone is exported, no folder of this machine is searched "
         "for libraries, the stack is not executable, and the code is not changed while it is loaded.",
         "Such an add-on works for its author, and fails or is unsafe on another machine.", binaryHygiene},
        {"load-unload", 1, Needs_e::Loading,
         "Loaded and unloaded fifty times it leaves nothing behind: no memory, no thread, no mapping of its file.",
         "The host loads a new version of an add-on while it runs. An add-on that stays loaded keeps the old version. "
         "A "
         "thread that it leaves behind crashes the host.",
         loadAndUnload},

        // ---- The commands
        {"commands-in-order", 1, Needs_e::Commands, "The commands of the macros succeed in their order.",
         "This is how users run them.", commandsInOrder},
        {"commands-alone", 1, Needs_e::Commands, "Each command keeps the contract as the only one after loading.",
         "Users start with any command. It may fail with a message because an earlier command is missing, but it must "
         "not harm the host.",
         commandsAlone},
        {"commands-twice", 2, Needs_e::Commands, "The commands keep the contract when each is given twice.",
         "Users repeat commands, and the second run meets the state that the first one left.", commandsTwice},
        {"commands-random-order", 2, Needs_e::Commands, "The commands keep the contract in any order.",
         "Users give commands in orders that the author did not expect.", commandsInRandomOrder},
        {"commands-from-second-add-on", 2, Needs_e::Commands,
         "The commands of the macros succeed when a command of another add-on has them run.",
         "Add-ons use one another, so a command can start while another command runs.", commandsFromSecondAddOn},

        // ---- The modes of the host
        {"batch-mode", 2, Needs_e::Commands,
         "The commands of the macros succeed in batch mode, and ask nobody to close a dialog.",
         "Nobody watches a job at night, so a dialog stops the host until the morning.", inBatchMode},
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
         "command works after them.",
         "Hosts run out of memory and refuse calls. What an add-on leaves behind then causes errors much later.",
         hostCallFails},
        {"stop-pressed", 2, Needs_e::Commands,
         "Commands that the user stops, at every percentage in turn, end as they should, and work when they are given "
         "again.",
         "Users stop long commands, and then expect the state from before.", stopPressed},
        {"allocation-fails", 3, Needs_e::Loading,
         "Commands of which one allocation fails, each in turn, or it and all later ones, fail or succeed, and the "
         "same "
         "command works after them.",
         "Large data sets use up the memory. The user's work must survive that, and the messages must be true.",
         allocationFails},
        {"mutated-text", 3, Needs_e::Loading,
         "Damaged commands keep the contract: cut, with options dropped, doubled and swapped, with strange bytes and "
         "very long values.",
         "Macros are edited by hand, cut by editors and written by programs. A typing error must not end the host.",
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
