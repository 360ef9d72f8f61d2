#include <nlohmann/json.hpp>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

using Json = nlohmann::json;

class Coverage : public RunnerTest {
protected:
    void trace(const std::string& macro, const std::string& file) const {
        runMacro(macro, {"--keep-going", "--trace", file});
    }
    ProgramResult coverage(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "coverage");
        return runProgram(runner(std::move(arguments)));
    }
    bool hasCommand(const std::string& file, const std::string& command) const {
        return json(file)["commands"].contains(command);
    }
    Json json(const std::string& name) const { return Json::parse(read(name), nullptr, false); }
};

TEST_F(Coverage, IsATable) {
    trace("ONE ECHO N=1\nONE FAIL a\n", "t.json");
    const ProgramResult result = coverage({"t.json"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out.rfind("host calls used  ", 0), 0U) << result.out;
    EXPECT_NE(result.out.find("\nONE ECHO   0      accepted  N\n"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("\nONE FAIL   1      failed    -\n"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("\n  VexaUtilStringAlloc: null\n"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("\n  VexaUtilSetAlloc\n"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("\n  leaked-set: needs VexaUtilSetAlloc\n"), std::string::npos) << result.out;
}

TEST_F(Coverage, MergesTracesAndCoverageFiles) {
    trace("ONE ECHO a\n", "a.json");
    trace("ONE FAIL a\n", "b.json");
    ASSERT_EQ(coverage({"a.json", "--json", "c.json"}).status, 0);
    EXPECT_EQ(json("c.json")["commands"].contains("ONE FAIL"), false);
    ASSERT_EQ(coverage({"c.json", "b.json", "--json", "d.json"}).status, 0);
    EXPECT_TRUE(json("d.json")["commands"].contains("ONE ECHO"));
    EXPECT_TRUE(json("d.json")["commands"].contains("ONE FAIL"));
}

TEST_F(Coverage, BelowTheLimitFails) {
    trace("ONE ECHO a\n", "t.json");
    EXPECT_EQ(coverage({"t.json", "--fail-under", "1"}).status, 0);
    const ProgramResult result = coverage({"t.json", "--fail-under", "99"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err.rfind("vexa-standin: the coverage is ", 0), 0U) << result.err;
    EXPECT_NE(result.err.find(" %, below 99 %\n"), std::string::npos) << result.err;
    EXPECT_EQ(coverage({"t.json", "--fail-under", "101"}).status, 2);
}

TEST_F(Coverage, IsAPageThatNeedsNoOtherFile) {
    trace("ONE ECHO a\n", "t.json");
    ASSERT_EQ(coverage({"t.json", "-o", "c.html"}).status, 0);
    const std::string page = read("c.html");
    EXPECT_EQ(page.rfind("<!DOCTYPE html>", 0), 0U);
    EXPECT_NE(page.find("<td>ONE ECHO</td>"), std::string::npos);
    EXPECT_NE(page.find("<td>unbalanced-lock</td><td>not tested</td>"), std::string::npos);
    EXPECT_EQ(page.find("<!-- "), std::string::npos);
    EXPECT_EQ(page.find("src="), std::string::npos);
}

TEST_F(Coverage, PageShowsNamesAsText) {
    write("c.json", R"({"format": "vexa-standin coverage 1", "commands": {"<b>\u001b": {}, "<!-- FIGURES -->": {}}})");
    ASSERT_EQ(coverage({"c.json", "-o", "c.html"}).status, 0);
    EXPECT_NE(read("c.html").find("<td>&lt;b&gt;\\x1B</td>"), std::string::npos);
    EXPECT_NE(read("c.html").find("<td>&lt;!-- FIGURES --&gt;</td>"), std::string::npos);
}

TEST_F(Coverage, OfAnotherFileIsRefused) {
    write("text", "ONE SAY a\n");
    write("object", "{}");
    struct Case {
        const char* file;
        const char* why;
    };
    const Case cases[] = {
        {"text", "this is not a trace of 'vexa-standin run --trace'"},
        {"object", "this is not a coverage file of vexa-standin"},
        {"gone", "cannot be read: No such file or directory"},
    };
    for (const Case& c : cases) {
        const ProgramResult result = coverage({c.file});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, std::string(c.file) + ": " + c.why + '\n');
    }
}

// ---- The option --coverage

TEST_F(Coverage, OfARunIsThatOfItsTrace) {
    const ProgramResult result = runMacro("ONE SAY a\nONE FAIL b\n", {"--keep-going", "--trace", "t.json", "--record",
                                                                      "r.macro", "--coverage", "c.json"});
    EXPECT_EQ(result.status, 1);
    ASSERT_EQ(coverage({"t.json", "--json", "d.json"}).status, 0);
    EXPECT_EQ(read("c.json"), read("d.json"));
}

TEST_F(Coverage, OfARunIsTheSameInProcess) {
    const std::string macro = "ONE SAY a\nONE FAIL b\n";
    runMacro(macro, {"--keep-going", "--coverage", "c.json"});
    runMacro(macro, {"--keep-going", "--coverage", "d.json", "--in-process"});
    EXPECT_TRUE(hasCommand("c.json", "ONE FAIL"));
    EXPECT_EQ(read("c.json"), read("d.json"));
}

TEST_F(Coverage, GrowsWithEachRun) {
    runMacro("ONE ECHO a\n", {"--coverage", "c.json"});
    runMacro("ONE FAIL a\n", {"--coverage", "c.json"});
    EXPECT_TRUE(hasCommand("c.json", "ONE ECHO"));
    EXPECT_TRUE(hasCommand("c.json", "ONE FAIL"));
    const std::string all = read("c.json");
    runMacro("ONE ECHO a\n", {"--coverage", "c.json"});
    EXPECT_EQ(read("c.json"), all);
}

TEST_F(Coverage, OfARunThatDiedIsKept) {
    EXPECT_EQ(runMacro("ONE FAIL a\nONE KILL\n", {"--keep-going", "--coverage", "c.json"}).status, 5);
    EXPECT_TRUE(hasCommand("c.json", "ONE FAIL"));
    EXPECT_EQ(json("c.json")["commands"]["ONE KILL"]["ends"], Json::array());
}

TEST_F(Coverage, OfManyRunsIsThatOfAll) {
    write("a.macro", "ONE ECHO a\n");
    write("b.macro", "ONE FAIL a\n");
    const ProgramResult result =
        runProgram(runner({"run", "a.macro", "b.macro", "--addon", ADDON_ONE, "--jobs", "2", "--coverage", "c.json"}));
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(hasCommand("c.json", "ONE ECHO"));
    EXPECT_TRUE(hasCommand("c.json", "ONE FAIL"));
}

TEST_F(Coverage, OfTestsIsThatOfTheirMacros) {
    write("a.macro", "ONE SAY a\n");
    write("b.macro", "ONE FAIL a\n");
    const std::vector<std::string> words = {"test", "a.macro", "b.macro", "--addon", ADDON_ONE, "--accept"};
    for (const char* const more : {"--jobs=2", "--in-process"}) {
        std::filesystem::remove(folder() / "c.json");
        std::vector<std::string> arguments = words;
        arguments.insert(arguments.end(), {"--coverage", "c.json", more});
        EXPECT_EQ(runProgram(runner(arguments)).status, 0);
        EXPECT_TRUE(hasCommand("c.json", "ONE SAY")) << more;
        EXPECT_TRUE(hasCommand("c.json", "ONE FAIL")) << more;
        const Json answers = json("c.json")["commands"]["ONE SAY"]["calls"]["VexaUtilMacroRecordExtCommand"];
        EXPECT_EQ(answers, Json::array({"1"})) << more;
    }
}

TEST_F(Coverage, OfACheckHasFailingCallsAndNoMadeUpNames) {
    write("a.macro", "ONE SAY a\n");
    for (const char* const more : {"--level=3", "--in-process"}) {
        std::filesystem::remove(folder() / "c.json");
        runProgram(runner({"check", ADDON_ONE, "--macro", "a.macro", "--time", "0.1", "--coverage", "c.json", more}));
        const Json commands = json("c.json")["commands"];
        for (const auto& [name, command] : commands.items()) {
            const bool isKnown = name == "ONE SAY" || name == "ONE (other text)" || name.front() == '(';
            EXPECT_TRUE(isKnown) << name << ' ' << more;
        }
        EXPECT_EQ(commands["ONE SAY"]["calls"]["VexaUtilMacroRecordExtCommand"], Json::array({"0", "1"})) << more;
    }
}

TEST_F(Coverage, FileIsCheckedBeforeTheRun) {
    write("notes", "keep me\n");
    for (const char* const file : {"notes", "m.macro"}) {
        const ProgramResult result = runMacro("ONE ECHO a\n", {"--coverage", file});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
    }
    EXPECT_EQ(runMacro("ONE ECHO a\n", {"--coverage", "notes"}).err,
              "notes: cannot be written: it exists, and is not a coverage file\n");
    EXPECT_EQ(read("notes"), "keep me\n");
    EXPECT_EQ(runMacro("ONE ECHO a\n", {"--coverage", "-"}).status, 2);
}

}  // namespace
}  // namespace vexa::e2e
