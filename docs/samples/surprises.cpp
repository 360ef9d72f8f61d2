// Each row of the page that tells what surprises.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"
#include "vexautilutil/vexautilutil.h"

namespace {

using namespace vexa::vexautilutil;
using vexa::standin::Host;
using vexa::toolbox::Set;

// Runs one reading of a command, as an add-on does in processCommand().
class Reader : public MacroCommandProcessorAbstract {
public:
    using Step = std::function<bool(Reader&)>;

    // Returns the message for the host, "" when the command was read.
    static std::string read(const char* text, const Step& step) {
        Host host;
        Reader reader(step);
        char* error = nullptr;
        reader.parseCommandString(text, &error);
        const std::string message = error != nullptr ? error : "";
        VexaUtilStringDealloc(&error);
        return message;
    }

    bool processCommand() override {
        std::string word;
        return getCommand(word) && m_step(*this);
    }
    bool composeCommandString(std::string& command) const override {
        command = "CMD ";
        return true;
    }

private:
    explicit Reader(Step step) : m_step(std::move(step)) {}

    Step m_step;
};

AsciiFile& fileWith(AsciiFile& file, const std::string& text) {
    const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
    const std::string path = testing::TempDir() + test + std::to_string(getpid()) + ".txt";
    std::FILE* stream = vexa::filesystem::fileOpen(path, "wb");
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fclose(stream);
    EXPECT_TRUE(file.open(path));
    vexa::filesystem::fileRemove(path);
    return file;
}

// What an unsigned integer option says against a text.
std::string refusalOf(const std::string& text) {
    const MacroTokenizer tokens = MacroCommandAbstract::tokenize(text);
    MacroTokenIterator current = tokens.begin();
    try {
        const UInt64MacroOption option(current, tokens.end(), nullptr);
    } catch (const MacroCommandError& refusal) {
        return refusal.message();
    }
    return "accepted";
}

TEST(Surprises, ASetOptionIsNeverAtItsDefault) {
    const Set zones;
    EXPECT_FALSE(SetMacroOption("ZONES", &zones, true, &zones).isDefaultValue());
}

TEST(Surprises, ASetOptionWithADefaultButNoFlagHasNone) {
    const Set zones;
    EXPECT_FALSE(SetMacroOption("ZONES", nullptr, false, &zones).isDefaultValue());
    EXPECT_TRUE(SetMacroOption("ZONES", nullptr, true, nullptr).isDefaultValue());
}

TEST(Surprises, ASetOptionSharesItsSet) {
    const Set zones;
    const SetMacroOption option("ZONES", &zones, false, nullptr);
    option.value()->insert(3);
    EXPECT_EQ(option.toString(), "ZONES=[3]");
}

TEST(Surprises, ATextOptionWithBothKindsOfQuotesDoesNotReadBack) {
    const std::string text = StringMacroOption("T", R"(it's "x")", nullptr).toString();
    EXPECT_EQ(text, R"(T='it's "x"')");
    const MacroTokenizer tokens = MacroCommandAbstract::tokenize(text);
    MacroTokenIterator current = tokens.begin();
    EXPECT_EQ(StringMacroOption(current, tokens.end(), nullptr).value(), "it");
}

TEST(Surprises, NamesOfOptionsHaveNoUnderscore) {
    const std::string text = "MY_OPT=1";
    const MacroTokenizer tokens = MacroCommandAbstract::tokenize(text);
    MacroTokenIterator current = tokens.begin();
    EXPECT_THROW(parseIdentifier(current, tokens.end()), MacroCommandError);
}

TEST(Surprises, NamesOfOptionsDifferInTheirCase) {
    class Command : public MacroCommandAbstract {
    public:
        Command() : MacroCommandAbstract("CMD") {}
        void execute() override {}
    } command;
    command.addOption(std::make_shared<UInt64MacroOption>("Count", 1, nullptr));
    command.addOption(std::make_shared<UInt64MacroOption>("COUNT", 2, nullptr));
    EXPECT_EQ(command.toString(), "CMD COUNT=2 Count=1");
}

TEST(Surprises, AMissingValueIsCalledAMissingOperator) {
    EXPECT_EQ(refusalOf("COUNT="), "Expected UInt64 operator missing");
}

TEST(Surprises, ANegativeNumberIsRefusedOverItsSign) { EXPECT_EQ(refusalOf("COUNT=-5"), "Invalid integer value -"); }

TEST(Surprises, BlanksAroundTheAssignmentAreRefusedByTheCommandModel) {
    EXPECT_EQ(refusalOf("COUNT = 1"), "Expected assignment operator, but found  ");
}

TEST(Surprises, BlanksAroundTheAssignmentAreNeededByTheProcessor) {
    std::string name;
    Reader::read("CMD COUNT=1", [&](Reader& reader) { return reader.getNextName(name); });
    EXPECT_EQ(name, "COUNT=1");
}

TEST(Surprises, TheEndAndAMissingAssignmentDifferInTheNameOnly) {
    std::string name;
    const auto next = [&](Reader& reader) { return reader.getNextName(name); };
    EXPECT_EQ(Reader::read("CMD", next), "");
    EXPECT_EQ(name, "");
    EXPECT_EQ(Reader::read("CMD COUNT", next), "");
    EXPECT_EQ(name, "COUNT");
}

TEST(Surprises, AMessageAboutAnOptionEndsInALineFeed) {
    const auto read = [](Reader& reader) {
        std::string name;
        double value = 0;
        return reader.getNextName(name) && reader.getDoubleValue(value);
    };
    EXPECT_EQ(Reader::read("CMD Size = big", read), "Error: Invalid Double value for command option: Size\n");
}

TEST(Surprises, TheMessagesOfGettersDoNotPassThroughDeposit) {
    const auto read = [](Reader& reader) {
        double value = 0;
        reader.depositErrorMessage("mine");
        return reader.getDoubleValue(value);
    };
    EXPECT_EQ(Reader::read("CMD big", read), "Error: Invalid Double value");
}

TEST(Surprises, WhatAHookThrowsLeavesNoMessage) {
    const auto read = [](Reader& reader) -> bool {
        reader.depositErrorMessage("mine");
        throw InvalidInstructionsException("CMD", "no");
    };
    EXPECT_THROW(Reader::read("CMD", read), InvalidInstructionsException);
}

TEST(Surprises, AnInt32KeepsTheLowBits) {
    std::string name;
    int32_t value = 0;
    Reader::read("CMD N = 4294967297",
                 [&](Reader& reader) { return reader.getNextName(name) && reader.getInt32Value(value); });
    EXPECT_EQ(value, 1);
}

TEST(Surprises, AnEmptySetLeavesItsBracket) {
    std::string name;
    const auto read = [&](Reader& reader) {
        Set zones;
        return reader.getNextName(name) && reader.getSetValue(zones) && !reader.getNextName(name);
    };
    Reader::read("CMD ZONES = []", read);
    EXPECT_EQ(name, "]");
    Reader::read("CMD ZONES = [ ]", read);
    EXPECT_EQ(name, "ZONES");
}

TEST(Surprises, ATextThatIsNoneStoresNoMessage) {
    EXPECT_EQ(Reader::read("CMD NAME = wake",
                           [](Reader& reader) {
                               std::string name, value;
                               return reader.getNextName(name) && reader.getStringValue(value, true);
                           }),
              "");
}

TEST(Surprises, AnEscapedNIsTheLetter) {
    std::string name, value;
    Reader::read(R"(CMD T = 'a\nb')",
                 [&](Reader& reader) { return reader.getNextName(name) && reader.getStringValue(value, true); });
    EXPECT_EQ(value, "anb");
}

TEST(Surprises, AnAssignedSetEndsInNoBlank) {
    EXPECT_EQ(Reader::toNameValueAssignment("ZONES", Set()), "ZONES = []");
    EXPECT_EQ(Reader::toNameValueAssignment("COUNT", int64_t{1}), "COUNT = 1 ");
}

TEST(Surprises, AnAssignedTextIsNotEscaped) {
    EXPECT_EQ(Reader::toNameValueAssignment("T", std::string("it's")), "T = 'it's' ");
}

TEST(Surprises, AnAssignedBoolIsAnInteger) {
    EXPECT_EQ(Reader::toNameValueAssignment("LOUD", true), "LOUD = 1 ");
    EXPECT_EQ(Reader::toNameValueAssignment("LOUD", static_cast<char>(true)), "LOUD = T ");
}

TEST(Surprises, AnAssignedDoubleHasSixDigits) {
    EXPECT_EQ(Reader::toNameValueAssignment("X", 0.1234567), "X = 0.123457 ");
}

TEST(Surprises, TheJournalAsksForNoState) {
    Reader::read("CMD", [](Reader& reader) {
        Host& host = *Host::current();
        host.setRecording(true);
        host.setProcessingLayout(true);
        EXPECT_TRUE(reader.recordMacroCommand("ID"));
        EXPECT_TRUE(reader.journalMacroCommand("ID", nullptr));
        EXPECT_TRUE(host.recordedCommands().empty());
        EXPECT_EQ(host.journalEntries().size(), 1u);
        return true;
    });
}

TEST(Surprises, ASecondTaskOfOneProgressDoesNotSendTheSamePercentage) {
    Host host;
    const auto progress = createTaskProgressBar(1);
    for (int task = 0; task < 2; ++task) {
        progress->start("Working");
        progress->advance();
        progress->finish();
    }
    EXPECT_EQ(host.statusHistory().back().percent, 0);
}

TEST(Surprises, EachLookAtTheStopButtonIsACallOfTheHost) {
    Host host;
    const auto progress = createTaskProgressBar(1000);
    progress->start("Working");
    host.clearCalls();
    for (int look = 0; look < 3; ++look) EXPECT_FALSE(progress->isInterrupted());
    EXPECT_EQ(host.calledFunctions().size(), 3u);
}

TEST(Surprises, BatchModeIsAskedForOnce) {
    Host host;
    const auto progress = createTaskProgressBar(1);
    host.setBatchMode(true);
    progress->start("Working");
    EXPECT_TRUE(host.statusLine().active);
}

TEST(Surprises, ACarriageReturnEndsNoLineButItsText) {
    AsciiFile file;
    fileWith(file, "a\rb\n");
    EXPECT_EQ(file.numLinesInFile(), 1u);
    EXPECT_EQ(file.readLine(), "a");
}

TEST(Surprises, ANulEndsAFile) {
    AsciiFile file;
    fileWith(file, std::string("a\n\0b\nc\n", 7));
    EXPECT_EQ(file.numLinesInFile(), 1u);
}

TEST(Surprises, BehindTheEndIsNoEnd) {
    AsciiFile file;
    fileWith(file, "a\n").readLine();
    EXPECT_TRUE(file.isEOF());
    file.advanceToNextLine();
    EXPECT_FALSE(file.isEOF());
}

TEST(Surprises, ASecondFileDoesNotBeginAtItsFirstLine) {
    AsciiFile file;
    fileWith(file, "a\n").readLine();
    fileWith(file, "b\nc\n");
    EXPECT_EQ(file.currentLineNumber(), 1u);
}

TEST(Surprises, AFolderIsNoFile) {
    EXPECT_FALSE(vexa::filesystem::fileExists("/"));
    EXPECT_TRUE(vexa::filesystem::dirExists("/"));
}

TEST(Surprises, ARefusalOfTheSecondStyleQuestionLooksLikeAValue) {
    Host host;
    host.setStyle({"Frame", "Width"}, int64_t{3});
    host.failCall("VexaUtilStyleGetLowLevelX", 2, GetValueReturnCode_NotAvailable);
    std::vector<std::string> path = {"Frame", "Width"};
    ResultType_e type = ResultType_None;
    GetValueReturnCode_e code = GetValueReturnCode_Ok;
    std::string text;
    getValueAsString(path, 0, 0, type, code, text);
    EXPECT_EQ(code, GetValueReturnCode_NotAvailable);
    EXPECT_EQ(text, "0");
}

}  // namespace
