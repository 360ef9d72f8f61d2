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

}  // namespace
}  // namespace vexa::e2e
