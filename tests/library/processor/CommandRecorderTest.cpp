#include "vexautilutil/CommandRecorder.h"

#include <gtest/gtest.h>

#include <memory>

#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"

namespace vexa::vexautilutil {
namespace {

class LoadCommand : public MacroCommandAbstract {
public:
    LoadCommand() : MacroCommandAbstract("LOAD") {
        const bool header = true;
        const std::uint64_t most = UINT64_MAX;
        const std::string title = "a \"b\"\\\n";
        addOption(std::make_shared<StringMacroOption>("FILE", "x", nullptr));
        addOption(std::make_shared<BooleanMacroOption>("HEADER", true, &header));
        addOption(std::make_shared<UInt64MacroOption>("ROWS", most, &most));
        addOption(std::make_shared<UInt64MacroOption>("SKIP", 1, &most));
        addOption(std::make_shared<StringMacroOption>("TITLE", title, &title));
        const toolbox::Set zones;
        addOption(std::make_shared<SetMacroOption>("ZONES", &zones, false, nullptr));
    }
    void execute() override {}
};

TEST(CommandRecorder, WritesTheOptionsOfACommandWithTheirDefaults) {
    LoadCommand command;
    CommandRecorder recorder("STATS");
    recorder.describe(command);
    EXPECT_EQ(recorder.toJson(), R"({
  "addon": "STATS",
  "commands": [
    {
      "name": "LOAD",
      "kind": "command",
      "purpose": "",
      "options": [
        {"name": "FILE", "type": "String", "help": ""},
        {"name": "HEADER", "type": "Boolean", "default": true, "help": ""},
        {"name": "ROWS", "type": "UInt64", "default": 18446744073709551615, "help": ""},
        {"name": "SKIP", "type": "UInt64", "help": ""},
        {"name": "TITLE", "type": "String", "default": "a \"b\"\\\u000a", "help": ""},
        {"name": "ZONES", "type": "Set", "help": ""}
      ]
    }
  ]
}
)");
}

TEST(CommandRecorder, TakesTheNotesOfTheAuthor) {
    LoadCommand command;
    CommandRecorder recorder("STATS");
    recorder.describe(command)
        .purpose("Loads a file.")
        .before("CLEAR")
        .option("FILE", "the file", R"("required": true)")
        .option("NONE", "no option of the command")
        .example("LOAD FILE=\"a\"")
        .example("LOAD FILE=\"a\"");
    const std::string json = recorder.toJson();
    EXPECT_NE(json.find(R"("purpose": "Loads a file.",)"), std::string::npos) << json;
    EXPECT_NE(json.find(R"({"name": "FILE", "type": "String", "required": true, "help": "the file"},)"),
              std::string::npos)
        << json;
    EXPECT_EQ(json.find("NONE"), std::string::npos) << json;
    EXPECT_NE(json.find("      \"before\": [\n        \"CLEAR\"\n      ],\n      \"examples\": [\n"
                        "        \"LOAD FILE=\\\"a\\\"\"\n      ]\n    }\n"),
              std::string::npos)
        << json;
}

TEST(CommandRecorder, DescribesNoCommandAtFirst) {
    EXPECT_EQ(CommandRecorder("\x01").toJson(), "{\n  \"addon\": \"\\u0001\",\n  \"commands\": []\n}\n");
}

class MeanProcessor : public MacroCommandProcessorAbstract {
public:
    explicit MeanProcessor(int answer) : m_answer(answer) {}
    bool processCommand() override {
        std::string word;
        std::string name;
        if (!getCommand(word)) return false;
        while (getNextName(name)) {
            if (!read(name)) return false;
        }
        return m_answer == 42;
    }
    bool composeCommandString(std::string&) const override { return true; }

private:
    bool read(const std::string& name) {
        char truth = 0;
        std::int32_t small = 0;
        std::int64_t large = 0;
        double number = 0;
        std::string text;
        toolbox::Set set;
        if (name == "B") return getBooleanValue(truth);
        if (name == "I") return getInt32Value(small);
        if (name == "L") return getInt64Value(large);
        if (name == "D") return getDoubleValue(number);
        if (name == "S") return getStringValue(text, true);
        if (name == "R") return getStringValue(text, false);
        return getSetValue(set);
    }

    int m_answer;
};

class RecordedProcessorTest : public testing::Test {
protected:
    bool process(const char* command) {
        char* message = nullptr;
        const bool isProcessed = processor.parseCommandString(command, &message);
        VexaUtilStringDealloc(&message);
        return isProcessed;
    }

    standin::Host host;
    CommandRecorder recorder{"STATS"};
    RecordedProcessor<MeanProcessor> processor{recorder, 42};
};

TEST_F(RecordedProcessorTest, WritesTheTypeOfEachGetter) {
    EXPECT_TRUE(process("mean b = T i = 1 L = 2 D = 0.5"));
    EXPECT_TRUE(process("MEAN S = 'x' R = 'y' Z = [1]"));
    EXPECT_EQ(recorder.toJson(), R"({
  "addon": "STATS",
  "commands": [
    {
      "name": "MEAN",
      "kind": "processor",
      "purpose": "",
      "options": [
        {"name": "B", "type": "Boolean", "help": ""},
        {"name": "I", "type": "Int32", "help": ""},
        {"name": "L", "type": "Int64", "help": ""},
        {"name": "D", "type": "Double", "help": ""},
        {"name": "S", "type": "String", "help": ""},
        {"name": "R", "type": "String", "escapes": false, "help": ""},
        {"name": "Z", "type": "Set", "help": ""}
      ],
      "examples": [
        "mean b = T i = 1 L = 2 D = 0.5",
        "MEAN S = 'x' R = 'y' Z = [1]"
      ]
    }
  ]
}
)");
}

TEST_F(RecordedProcessorTest, IgnoresWhatWasRefused) {
    EXPECT_FALSE(process("MEAN I = 1 L = x"));
    const std::string json = recorder.toJson();
    EXPECT_NE(json.find("\"I\""), std::string::npos) << json;
    EXPECT_EQ(json.find("\"L\""), std::string::npos) << json;
    EXPECT_EQ(json.find("examples"), std::string::npos) << json;
}

TEST_F(RecordedProcessorTest, KeepsTheNotesWhileItRecords) {
    EXPECT_TRUE(process("MEAN I = 1"));
    recorder.notes("MEAN").option("I", "h", "\"min\": 1");
    EXPECT_TRUE(process("MEAN I = 2"));
    EXPECT_NE(recorder.toJson().find(R"({"name": "I", "type": "Int32", "min": 1, "help": "h"})"), std::string::npos);
}

}  // namespace
}  // namespace vexa::vexautilutil
