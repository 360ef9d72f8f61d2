// The commands of the probe, and what only several commands or add-ons show.

#include "ProbedHost.h"

namespace vexa::probe {
namespace {

using ProbeCommands = ProbedHost;

TEST_F(ProbeCommands, RefuseWhatTheyDoNotKnow) {
    load();
    const std::pair<const char*, const char*> refused[] = {
        {"SING", "Error: unknown command SING; known are WRITE, WATCH, FAIL and NOTE"},
        {"WRITE", "Error: WRITE needs FILE = 'facts.json'"},
        {"WRITE FILE = 3", "Error: expected a quoted text for FILE"},
        {"WRITE FILE 'f'", "Error: expected = after FILE"},
        {"WRITE RISKY = PERHAPS", "Error: expected TRUE or FALSE for RISKY"},
        {"WRITE COLOUR = 3", "Error: unknown option COLOUR"},
        {"WRITE FILE = 'f", "Error: a quote is not closed"},
        {"WATCH", "Error: WATCH needs FILE = 'facts.json'"},
        {"WATCH FILE = '/none.json'", "/none.json: cannot be read: there is no such file; WRITE it first"},
        {"FAIL NOW = 'x'", "Error: unknown option NOW"},
    };
    for (const auto& [command, message] : refused) EXPECT_EQ(run(command), message);
}

TEST_F(ProbeCommands, RecordNotesAsTheyWereGiven) {
    load();
    host.setRecording(true);
    EXPECT_EQ(run("NOTE TEXT = 'any text'"), "");
    ASSERT_EQ(host.recordedCommands().size(), 1U);
    EXPECT_EQ(host.recordedCommands()[0].command, "NOTE TEXT = 'any text'");
}

TEST_F(ProbeCommands, RecordOnlyWhatCanBePlayedBack) {
    load();
    host.setRecording(true);
    write();
    const auto recorded = host.recordedCommands();
    EXPECT_EQ(recorded.size(), 3U);
    for (const standin::RecordedCommand& command : recorded) {
        EXPECT_EQ(command.addOnId, "VEXAPROBE");
        EXPECT_EQ(run(command.command), "");
    }
}

TEST_F(ProbeCommands, ShowThatAMacroGoesOnAfterAFailure) {
    load();
    write();
    run("FAIL");
    EXPECT_EQ(answer("macro.goesOnAfterFailure"), false);
    run("NOTE TEXT = 'later'");
    EXPECT_EQ(answer("macro.goesOnAfterFailure"), true);
}

TEST_F(ProbeCommands, SayWhatIsMissingForAnAnswer) {
    load();
    write();
    EXPECT_EQ(reason("macro.goesOnAfterFailure"), "needs the command VEXAPROBE FAIL, and another command after it");
    EXPECT_EQ(reason("shutdown.order"), "needs a second probe: load vexa-probe-second.so, and run VEXAPROBE2 WATCH");
}

TEST_F(ProbeCommands, ShowThatTheShutdownIsCalled) {
    load();
    write();
    EXPECT_EQ(answer("shutdown.isCalled"), false);
    host.unloadAddOns();
    EXPECT_EQ(answer("shutdown.isCalled"), true);
    EXPECT_EQ(answer("thread.shutdown.isLoadingThread"), true);
}

TEST_F(ProbeCommands, ShowTheOrderOfTwoShutdowns) {
    host.loadAddOn(VEXA_PROBE_SECOND);  // in either order of loading
    load();
    write();
    host.run("VEXAPROBE2", "WATCH FILE = '" + file() + "'");
    host.unloadAddOns();
    EXPECT_EQ(answer("shutdown.order"), "lastLoadedFirst");
    EXPECT_FALSE(content().contains("shutdowns"));
}

TEST_F(ProbeCommands, DoNotTakeAnEarlierSessionForASecondAddOn) {
    load();
    write();
    folder.write("facts.json", R"({"schema": 1, "facts": {}, "shutdowns": [{"process": 1, "loadedAt": 1}]})");
    host.unloadAddOns();
    EXPECT_EQ(answer("shutdown.order"), nullptr);
}

TEST_F(ProbeCommands, FindTheFileAgainFromAnotherFolder) {
    load();
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    EXPECT_EQ(run("WRITE FILE = 'facts.json'"), "");
    std::filesystem::current_path(before);
    host.unloadAddOns();
    EXPECT_EQ(answer("shutdown.isCalled"), true);
}

TEST_F(ProbeCommands, AreReadAsOtherHostsPassThem) {
    host.answerLike({{"command.text.startsWithBlank", "true"}, {"command.text.endsWithLineBreak", "true"}});
    load();
    EXPECT_EQ(write(), "");
    EXPECT_EQ(answer("command.text.startsWithBlank"), true);
    EXPECT_EQ(answer("command.text.endsWithLineBreak"), true);
}

}  // namespace
}  // namespace vexa::probe
