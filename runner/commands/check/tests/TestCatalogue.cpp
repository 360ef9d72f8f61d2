#include "commands/check/tests/Tests.h"

#include <algorithm>

namespace vexa::runner {

const std::vector<CheckTest>& checkTests() {
    static const std::vector<CheckTest> tests = {
        // ---- The add-on itself
        {"load", 1, Needs_e::File, "The add-on is loaded and unloaded.",
         "An add-on that cannot be loaded cannot be used, and every other test starts by loading it.", load},
        {"binary-hygiene", 1, Needs_e::File,
         "All symbols can be bound, only vexaAddOn is exported, the loader searches no folder of this machine for "
         "libraries and does not change the code, and the stack is not executable.",
         "An add-on without these properties may fail or be unsafe on another machine.", binaryHygiene},
        {"load-unload", 1, Needs_e::Loading,
         "Fifty times loaded and unloaded, the add-on leaves no memory, no thread and no mapping of its file.",
         "The host can load a new version of an add-on while it runs, unless the old version stays mapped. A thread "
         "that still runs crashes the host when its code is unloaded.",
         loadAndUnload},

        // ---- The commands
        {"commands-in-order", 1, Needs_e::Commands, "The commands of the macros succeed in their order.",
         "This is how users run them.", commandsInOrder},
        {"commands-alone", 1, Needs_e::Commands,
         "Each command keeps the contract when it is the first one after loading.",
         "Users start with any command. It may fail with a message because an earlier command is missing, but it must "
         "not harm the host.",
         commandsAlone},
        {"commands-twice", 2, Needs_e::Commands, "The commands keep the contract when each one runs twice.",
         "Users repeat commands. The second run starts in the state that the first one left.", commandsTwice},
        {"commands-random-order", 2, Needs_e::Commands, "The commands keep the contract in any order.",
         "Users give commands in orders that the author did not expect.", commandsInRandomOrder},
        {"commands-from-second-add-on", 2, Needs_e::Commands,
         "The commands of the macros succeed when a command of another add-on runs them.",
         "Add-ons use one another, so a command can start while another command runs.", commandsFromSecondAddOn},

        // ---- The modes of the host
        {"batch-mode", 2, Needs_e::Commands, "The commands of the macros succeed in batch mode, and show no dialog.",
         "A batch job has no user. The host would wait forever for someone to close the dialog.", inBatchMode},
        {"recording-on", 2, Needs_e::Commands, "The commands of the macros succeed while the host records.",
         "Users record macros of what they do.", whileRecording},
        {"journal-playback", 2, Needs_e::Commands,
         "The commands of the macros succeed while the host plays back a journal.",
         "Opening a data set runs the commands of its journal.", duringJournalPlayback},
        {"layout-playback", 2, Needs_e::Commands,
         "The commands of the macros succeed while the host plays back a layout.",
         "Opening a layout runs the commands in it.", duringLayoutPlayback},
        {"record-replay", 2, Needs_e::Commands,
         "The recorded commands succeed when they are run, and record the same commands again.",
         "Users rely on recorded macros. A macro that does something else when it is played back misleads them.",
         recordAndReplay},

        // ---- The description of the commands
        {"description-examples", 1, Needs_e::Description,
         "The examples of the description succeed. They, the macros, and what is recorded have only described options.",
         "Editors, pages and users rely on the description.", descriptionExamples},
        {"description-options", 2, Needs_e::Description,
         "Each command of the description succeeds with only its required options, and with each option at its "
         "default, at both ends of its range, and with values of its type. What is recorded has only described "
         "options.",
         "A description with an option that does not exist, or with another type, makes users write wrong macros.",
         descriptionOptions},
        {"description-refusals", 2, Needs_e::Description,
         "Each command of the description fails without a required option, with an unknown option, with a value of "
         "another type, and with a value outside of its range.",
         "A mistake in a macro that is accepted silently gives a wrong result.", descriptionRefusals},
        {"description-random", 3, Needs_e::Description,
         "Random commands of the description keep the contract in every mode of the host. Those that the description "
         "forbids fail, whatever ran before. What is recorded has only described options.",
         "Options that work alone may fail together, and after other commands.", descriptionRandom},
        {"description-complete", 2, Needs_e::Description,
         "No word in capitals in the add-on's file is a command or an option that the description lacks.",
         "Users cannot find a command or an option that is not described.", descriptionComplete},

        // ---- What goes wrong around commands
        {"host-call-fails", 2, Needs_e::Loading,
         "Each host call of a command fails in turn. The command succeeds or fails with a message, and the same "
         "command works after it.",
         "Hosts run out of memory and refuse calls. If the add-on does not clean up, errors follow much later.",
         hostCallFails},
        {"stop-pressed", 2, Needs_e::Commands,
         "The user stops a command at each percentage in turn. The command keeps the contract, and the same command "
         "works after it.",
         "Users stop long commands, and expect the state from before the command.", stopPressed},
        {"allocation-fails", 3, Needs_e::Loading,
         "Each allocation of a command fails in turn, alone or with all later ones. The command succeeds or fails, and "
         "the same command works after it.",
         "Large data sets use up the memory. The user's work must survive that, and the messages must be true.",
         allocationFails},
        {"mutated-text", 3, Needs_e::Loading,
         "Damaged commands keep the contract: they are cut off, or have missing, repeated or swapped options, strange "
         "bytes or very long values.",
         "People and programs write macros, and make mistakes. A typing error must not end the host.", mutatedTexts,
         true},
    };
    return tests;
}

const CheckTest* findCheckTest(std::string_view name) {
    const std::vector<CheckTest>& all = checkTests();
    const auto found = std::find_if(all.begin(), all.end(), [&](const CheckTest& test) { return name == test.name; });
    return found == all.end() ? nullptr : &*found;
}

}  // namespace vexa::runner
