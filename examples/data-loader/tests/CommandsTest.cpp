#include "LoaderTest.h"

namespace dataloader {
namespace {

/// With the add-on loaded, and a small table at hand.
class Commands : public FolderTest {
protected:
    Commands() {
        write("small.csv", "# two columns\nhour,rain\n0,0.5\n1,1.5\n");
        write("broken.csv", "hour,rain\n0,0.5\n1,x\n2,2.5\n");
    }

    struct Played {
        vexa::standin::TestedCommand tested;
        std::string printed;
    };

    Played play(const std::string& command) {
        testing::internal::CaptureStdout();
        const vexa::standin::TestedCommand tested = addOn.run(command);
        return {tested, testing::internal::GetCapturedStdout()};
    }
    /// What a command prints that is to succeed.
    std::string run(const std::string& command) {
        const Played played = play(command);
        EXPECT_TRUE(played.tested.accepted) << played.tested;
        return played.printed;
    }
    /// The message of a command that is to fail, and to print nothing.
    std::string refusalOf(const std::string& command) {
        const Played played = play(command);
        EXPECT_FALSE(played.tested.accepted) << played.tested;
        EXPECT_EQ(played.printed, "") << played.tested;
        return played.tested.error;
    }
    std::vector<std::string> recorded() const {
        std::vector<std::string> commands;
        for (const vexa::standin::RecordedCommand& entry : host.recordedCommands()) commands.push_back(entry.command);
        return commands;
    }

    vexa::standin::AddOnTester addOn{DATALOADER_ADDON};
    vexa::standin::Host& host = addOn.host();

private:
    const vexa::standin::ExpectNoFindings m_expectation{host, fail};
};

using Strings = std::vector<std::string>;

TEST_F(Commands, LoadAndDescribeATable) {
    EXPECT_EQ(run("LOAD FILE = 'small.csv'"), "Loaded small.csv: 2 columns, 2 rows\n");
    EXPECT_EQ(run("SUMMARY"),
              "small.csv: 2 columns, 2 rows\n"
              "column    count  missing       minimum       maximum          mean     deviation\n"
              "hour          2        0             0             1           0.5      0.707107\n"
              "rain          2        0           0.5           1.5             1      0.707107\n");
}

TEST_F(Commands, ExportATableThatLoadsAgain) {
    run("LOAD FILE = 'small.csv'");
    EXPECT_EQ(run("EXPORT FILE = 'out.csv'"), "Wrote out.csv: 2 rows\n");
    EXPECT_EQ(contentsOf("out.csv"), "\"hour\",\"rain\"\n0,0.5\n1,1.5\n");
    EXPECT_EQ(run("load file = \"out.csv\""), "Loaded out.csv: 2 columns, 2 rows\n");
}

TEST_F(Commands, TakeTheirOptions) {
    write("gaps.txt", "a,b c\n1 2\nNA 4\n");
    EXPECT_EQ(run("LOAD MISSING = 'skip' SEPARATOR = 'blank' FILE = 'gaps.txt'"),
              "Loaded gaps.txt: 2 columns, 1 rows, and 1 left out for missing values\n");
    EXPECT_EQ(run("LOAD FILE = 'gaps.txt' SEPARATOR = 'blank' MISSING = 'keep'"),
              "Loaded gaps.txt: 2 columns, 2 rows\n");
}

TEST_F(Commands, RefuseWhatIsWrongWithThem) {
    struct Case {
        const char* why;
        const char* command;
        const char* message;
    };
    const Case cases[] = {
        {"nothing", "", "Error: Missing command; known are LOAD, SUMMARY, EXPORT"},
        {"unknown command", "Frob", "Error: Unknown command: FROB; known are LOAD, SUMMARY, EXPORT"},
        {"unknown option", "LOAD NAME = 'a'", "Error: Unknown option: NAME"},
        {"an option too many", "SUMMARY FILE = 'a'", "Error: Unknown option: FILE"},
        {"given twice", "LOAD FILE = 'a' file = 'b'", "Error: Option given twice: FILE"},
        {"no file to load", "LOAD", "Error: Missing option: FILE"},
        {"no file to write", "EXPORT", "Error: Missing option: FILE"},
        {"no blanks around =", "LOAD FILE='a'", "Error: Expected NAME = 'value', but found FILE='A'"},
        {"something else than =", "LOAD FILE : 'a'", "Error: Expected NAME = 'value', but found FILE"},
        {"no value", "LOAD FILE =", "Error: Expected a quoted text for FILE"},
        {"no quotes", "LOAD FILE = a", "Error: Expected a quoted text for FILE"},
        {"empty", "LOAD FILE = ''", "Error: Expected a quoted text for FILE"},
        {"line break", "LOAD FILE = 'a\nb'", "Error: Line break in the text for FILE"},
        {"left open", "LOAD FILE = 'a", "Error: Missing closing quote of: LOAD FILE = 'a"},
        {"closed by an escaped quote", "LOAD FILE = 'a\\'", "Error: Missing closing quote of: LOAD FILE = 'a\\'"},
        {"closed by the other quote", "LOAD FILE = 'a\"", "Error: Missing closing quote of: LOAD FILE = 'a\""},
        {"unknown separator", "LOAD FILE = 'small.csv' SEPARATOR = 'tab'",
         "Error: Expected one of auto, comma, blank for SEPARATOR, but found tab"},
        {"unknown policy", "LOAD FILE = 'small.csv' MISSING = 'KEEP'",
         "Error: Expected one of refuse, skip, keep for MISSING, but found KEEP"},
        {"no such file", "LOAD FILE = 'nowhere.csv'", "Error: Cannot open nowhere.csv: No such file or directory"},
        {"summary of nothing", "SUMMARY", "Error: No table: LOAD comes first"},
        {"export of nothing", "EXPORT FILE = 'out.csv'", "Error: No table: LOAD comes first"},
    };
    for (const Case& c : cases) EXPECT_EQ(refusalOf(c.command), c.message) << c.why;
    EXPECT_EQ(recorded(), Strings{});
    EXPECT_TRUE(host.dialogs().empty());
}

TEST_F(Commands, ShowTheLineOfABrokenRowOnceAndKeepTheTableBefore) {
    run("LOAD FILE = 'small.csv'");
    const std::string before = run("SUMMARY");
    EXPECT_EQ(refusalOf("LOAD FILE = 'broken.csv'"), "Error: Nothing was loaded from broken.csv");
    EXPECT_EQ(host.dialogs(),
              Strings{"Expected a number in column 2 (rain), but found \"x\" on line 3 in file: broken.csv"});
    EXPECT_EQ(run("SUMMARY"), before);
}

TEST_F(Commands, KeepTheTableBeforeWhenTheUserStopsThem) {
    run("LOAD FILE = 'small.csv'");
    const std::string before = run("SUMMARY");
    write("large.csv", largeTable());
    host.pressStopAtPercent(50);
    EXPECT_EQ(refusalOf("LOAD FILE = 'large.csv'"), "Error: LOAD was stopped by the user");
    host.releaseStop();
    EXPECT_EQ(run("SUMMARY"), before);
    EXPECT_EQ(recorded(), (Strings{"LOAD FILE = 'small.csv'", "SUMMARY", "SUMMARY"}));
}

TEST_F(Commands, KeepTheTableBeforeWhenTheHostDoesNotRecord) {
    run("LOAD FILE = 'small.csv'");
    write("other.csv", "a\n1\n");
    host.failCall("VexaUtilMacroRecordExtCommand");
    EXPECT_EQ(play("LOAD FILE = 'other.csv'").tested.error, "Error: The host did not record the command");
    EXPECT_EQ(run("SUMMARY").rfind("small.csv: ", 0), 0u);
}

TEST_F(Commands, TellTheHostInOrderUnderTheirGuards) {
    run("LOAD FILE = 'small.csv'");
    const Strings expected = {"VexaUtilLockStart",
                              "VexaUtilMacroIsBatchModeActive",
                              "VexaUtilStatusStartPercentDone",
                              "VexaUtilStatusCheckPercentDone",
                              "VexaUtilStatusCheckPercentDone",
                              "VexaUtilStatusFinishPercentDone",
                              "VexaUtilAuxDataBeginAssign",
                              "VexaUtilMacroIsRecordingActive",
                              "VexaUtilStateIsProcessingJournal",
                              "VexaUtilStateIsProcessingLayout",
                              "VexaUtilMacroRecordExtCommand",
                              "VexaUtilAuxDataEndAssign",
                              "VexaUtilLockFinish"};
    EXPECT_EQ(host.calledFunctions(), expected);
}

TEST_F(Commands, DoNotMarkTheDataAsChangedWhereTheyOnlyShowThem) {
    run("LOAD FILE = 'small.csv'");
    for (const char* command : {"SUMMARY", "EXPORT FILE = 'out.csv'"}) {
        host.clearCalls();
        run(command);
        Strings marking;
        for (const vexa::standin::Call& call : host.calls()) {
            if (call.function == "VexaUtilDataSetSuspendMarking") marking.push_back(call.arguments);
        }
        EXPECT_EQ(marking, (Strings{"1", "0"})) << command;
    }
}

TEST_F(Commands, ExplainWhatAHostFunctionThrew) {
    for (const char* function : {"VexaUtilLockStart", "VexaUtilStatusStartPercentDone", "VexaUtilAuxDataBeginAssign",
                                 "VexaUtilMacroIsRecordingActive"}) {
        host.throwFromCall(function);
        const std::string error = play("LOAD FILE = 'small.csv'").tested.error;
        EXPECT_EQ(error, "Error: " + std::string(function) + " was told to throw");
        EXPECT_EQ(refusalOf("SUMMARY"), "Error: No table: LOAD comes first");
    }
}

TEST_F(Commands, LetNothingOutWhenTheHostHasNoStrings) {
    host.suppress("missing-errmsg");  // there is no memory for one
    host.throwFromCall("VexaUtilStringAlloc", 1);
    host.throwFromCall("VexaUtilStringAlloc", 2);  // the message about the first failure
    EXPECT_EQ(refusalOf("FROB"), "");
    host.failCall("VexaUtilStringAlloc");
    EXPECT_EQ(refusalOf("FROB"), "");
}

TEST_F(Commands, ForgetTheTableWhenTheAddOnIsUnloaded) {
    run("LOAD FILE = 'small.csv'");
    host.unloadAddOns();
    host.loadAddOn(DATALOADER_ADDON);
    EXPECT_EQ(refusalOf("SUMMARY"), "Error: No table: LOAD comes first");
}

TEST_F(Commands, AreRecordedInOneOrderAndForm) {
    run("load MISSING = \"keep\"  FILE = \"small.csv\" ");
    run("Summary");
    run("EXPORT File = \"it's a\\\\b\"");
    EXPECT_EQ(recorded(),
              (Strings{"LOAD FILE = 'small.csv' MISSING = 'keep'", "SUMMARY", "EXPORT FILE = 'it\\'s a\\\\b'"}));
}

TEST_F(Commands, PlayBackToTheSameOutcomeAndRecording) {
    const Strings commands = {"LOAD FILE = \"it's \\\\ small\" SEPARATOR = 'auto'", "SUMMARY",
                              "EXPORT FILE = 'out \"1\".csv'", "LOAD MISSING = 'skip' FILE = 'out \"1\".csv'",
                              "summary"};
    write("it's \\ small", contentsOf("small.csv"));
    std::string printed;
    for (const std::string& command : commands) printed += run(command);
    const Strings first = recorded();
    ASSERT_EQ(first.size(), commands.size());

    std::string printedAgain;
    for (const std::string& command : first) printedAgain += run(command);
    Strings twice = first;
    twice.insert(twice.end(), first.begin(), first.end());
    EXPECT_EQ(recorded(), twice);
    EXPECT_EQ(printedAgain, printed);
}

}  // namespace
}  // namespace dataloader
