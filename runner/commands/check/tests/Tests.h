#pragma once

#include <string_view>
#include <vector>

#include "commands/check/trial/Trial.h"

namespace vexa::runner {

/// Every test, in the order in which they run. Tests that others build on come first.
const std::vector<CheckTest>& checkTests();

/// Returns the test \p name; null if there is none.
const CheckTest* findCheckTest(std::string_view name);

// The functions of the tests. checkTests() has their names and says what each one tests.

// The add-on itself
Verdict load(Trial& trial);
Verdict binaryHygiene(Trial& trial);
Verdict loadAndUnload(Trial& trial);

// Every command of the macros
Verdict commandsInOrder(Trial& trial);
Verdict commandsAlone(Trial& trial);
Verdict commandsTwice(Trial& trial);
Verdict commandsInRandomOrder(Trial& trial);
Verdict commandsFromSecondAddOn(Trial& trial);

// The macros while the host is in another mode
Verdict inBatchMode(Trial& trial);
Verdict whileRecording(Trial& trial);
Verdict duringJournalPlayback(Trial& trial);
Verdict duringLayoutPlayback(Trial& trial);
Verdict recordAndReplay(Trial& trial);

// Disturbed commands. A disturbed command may fail with a message. It must keep the contract, and the commands that it
// records must be replayable. After it, the same command must have its usual result.
Verdict hostCallFails(Trial& trial);
Verdict stopPressed(Trial& trial);
Verdict allocationFails(Trial& trial);

// The description of the add-on's commands. The add-on accepts and refuses what it says, and has no other options.
Verdict descriptionExamples(Trial& trial);
Verdict descriptionOptions(Trial& trial);
Verdict descriptionRefusals(Trial& trial);
Verdict descriptionRandom(Trial& trial);
Verdict descriptionComplete(Trial& trial);

// Damaged commands, systematically and then at random. They only have to keep the contract.
Verdict mutatedTexts(Trial& trial);

}  // namespace vexa::runner
