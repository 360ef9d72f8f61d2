// Findings and failures name the line of the add-on's source. The add-on lines/MarkedAddOn.cpp is compiled by each
// compiler, without and with optimization, without and with debug information.

#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

using Json = nlohmann::json;

const char* const kAddOns[] = {MARKED_ADDONS};

struct Breach {
    const char* command;
    const char* rule;
    const char* opened;  // the mark of the line that must stand below "first:"; null for no such line
    const char* seen;    // the mark of the line below "seen:"; null for the function of the command
};

const Breach kBreaches[] = {
    {"LOCK", "unbalanced-lock", "lock", nullptr}, {"FREE", "double-free", "alloc", "double-free"},
    {"LIST", "leaked-arglist", "list", nullptr},  {"PERCENT", "percent-out-of-range", "start", "percent"},
    {"NULL", "null-handle", nullptr, "null"},     {"FINISH", "unbalanced-auxdata", nullptr, "finish"},
};

std::map<std::string, std::size_t> readMarks() {
    std::map<std::string, std::size_t> marks;
    std::ifstream source(MARKED_ADDON_SOURCE);
    std::string line;
    for (std::size_t number = 1; std::getline(source, line); ++number) {
        const std::size_t place = line.find("// MARK ");
        if (place != std::string::npos) marks[line.substr(place + 8)] = number;
    }
    return marks;
}

std::string placeOf(const std::string& mark) {
    static const std::map<std::string, std::size_t> marks = readMarks();
    return std::string(MARKED_ADDON_SOURCE) + ':' + std::to_string(marks.at(mark));
}

// The line after the one that starts with `label`.
std::string lineAfter(const std::string& text, const std::string& label) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("    " + label, 0) == 0) return std::getline(lines, line) ? line : "";
    }
    return "";
}

bool startsWith(const std::string& text, const std::string& start) { return text.rfind(start, 0) == 0; }

class SourceLines : public RunnerTest, public testing::WithParamInterface<const char*> {
protected:
    static bool hasLines() { return std::string(GetParam()).find("-lines.so") != std::string::npos; }
    static std::string addOnFile() { return std::filesystem::path(GetParam()).filename(); }

    ProgramResult runWith(const std::string& command, const std::vector<std::string>& options = {}) const {
        write("m.macro", "MARKED " + command + '\n');
        std::vector<std::string> words = {"run", "m.macro", "--addon", GetParam()};
        words.insert(words.end(), options.begin(), options.end());
        return runProgram(runner(words));
    }
    ProgramResult attachWith(const std::string& command, const std::vector<std::string>& options = {}) const {
        write("m.macro", "MARKED " + command + '\n');
        std::vector<std::string> words = {"attach"};
        words.insert(words.end(), options.begin(), options.end());
        for (const char* const word : {"--", VEXA_STANDIN, "run", "--in-process", "m.macro", "--addon", GetParam()}) {
            words.emplace_back(word);
        }
        for (const Breach& breach : kBreaches) words.insert(words.end(), {"--suppress", breach.rule});
        return runProgram(runner(words));
    }

    // Expects the place of a mark in `line`; without debug information a symbol or an offset in the add-on.
    static void expectPlace(const std::string& line, const char* mark) {
        const std::string at = "           at ";
        if (!hasLines()) {
            EXPECT_TRUE(startsWith(line, at) && line.find("0x") != std::string::npos) << line;
            EXPECT_NE(line.find(" in " + addOnFile()), std::string::npos) << line;
            EXPECT_EQ(line.find("MarkedAddOn.cpp"), std::string::npos) << line;
        } else if (mark != nullptr) {
            EXPECT_TRUE(startsWith(line, at + placeOf(mark) + ", in ")) << line;
        } else {
            EXPECT_TRUE(startsWith(line, at + placeOf("execute") + ", in ")) << line;
        }
    }
    // Expects that `text` has the message of a command that failed in the `function` that has the mark.
    static void expectFailure(const std::string& text, const std::string& place, const char* mark,
                              const std::string& function = "fail") {
        const std::string message = place + ": MARKED: there is no such zone\n";
        const std::string at = message + "    at " + placeOf(mark) + ", in ";
        const auto has = [&](const std::string& part) { return text.find(part) != std::string::npos; };
        if (hasLines()) {
            EXPECT_TRUE(has(at + function + '\n') || has(at + "(anonymous namespace)::" + function + '\n')) << text;
        } else {
            EXPECT_TRUE(has(message) && !has(message + "    at ")) << text;
        }
    }
    static void expectPlaces(const std::string& text, const Breach& breach) {
        SCOPED_TRACE(text);
        EXPECT_NE(text.find(std::string(" [") + breach.rule + "]\n"), std::string::npos);
        if (breach.opened != nullptr) expectPlace(lineAfter(text, "first:"), breach.opened);
        expectPlace(lineAfter(text, "seen:"), breach.seen);
    }
};

std::string variantOf(const testing::TestParamInfo<const char*>& info) {
    std::string name = std::filesystem::path(info.param).stem();
    for (char& c : name) c = c == '-' ? '_' : c;
    return name;
}

TEST_P(SourceLines, AreNamedForSixRules) {
    for (const Breach& breach : kBreaches) expectPlaces(runWith(breach.command).err, breach);
}

TEST_P(SourceLines, AreNamedInAnotherHost) {
    if (VEXA_IS_SANITIZED) GTEST_SKIP() << "a build with sanitizers has no layer";
    for (const Breach& breach : kBreaches) expectPlaces(attachWith(breach.command).err, breach);
}

TEST_P(SourceLines, AreNamedForAFailedCommand) { expectFailure(runWith("FAIL").err, "m.macro:1", "fail"); }

TEST_P(SourceLines, AreThoseOfTheExceptionThatMadeACommandFail) {
    if (VEXA_IS_SANITIZED) GTEST_SKIP() << "a build with sanitizers does not note exceptions";
    expectFailure(runWith("THROW").err, "m.macro:1", "throw", "search");
}

TEST_P(SourceLines, AreNotThoseOfAnExceptionThatTheAddOnHasHandled) {
    expectFailure(runWith("RECOVER").err, "m.macro:1", "fail");
}

TEST_P(SourceLines, AreThoseOfAnExceptionThatEscapes) {
    if (VEXA_IS_SANITIZED) GTEST_SKIP() << "a build with sanitizers does not note exceptions";
    const std::string err = runWith("ESCAPE").err;
    expectPlace(lineAfter(err, "seen:"), "throw");
    EXPECT_EQ(err.find("\n    at " + placeOf("throw") + ", in ") != std::string::npos, hasLines()) << err;
}

TEST_P(SourceLines, AreNamedForAFailedCommandInAnotherHost) {
    if (VEXA_IS_SANITIZED) GTEST_SKIP() << "a build with sanitizers has no layer";
    expectFailure(attachWith("FAIL").err, "command 1", "fail");
    expectFailure(attachWith("THROW").err, "command 1", "throw", "search");
    expectFailure(attachWith("RECOVER").err, "command 1", "fail");
}

TEST_P(SourceLines, AreExplainedOnceWithoutDebugInformation) {
    write("m.macro", "MARKED LOCK\nMARKED LIST\n");
    const std::string err = runProgram(runner({"run", "m.macro", "--addon", GetParam()})).err;
    const std::string hint = "vexa-standin: compile the add-on with -g to see the lines of its source\n";
    const std::size_t place = err.find(hint);
    EXPECT_EQ(place == std::string::npos, hasLines()) << err;
    EXPECT_TRUE(place == std::string::npos || err.find(hint, place + 1) == std::string::npos) << err;
}

TEST_P(SourceLines, AreInTheWholeStack) {
    std::vector<std::string> texts = {runWith("LOCK", {"--stacks"}).err};
    if (!VEXA_IS_SANITIZED) texts.push_back(attachWith("LOCK", {"--stacks"}).err);  // the layer is not built then
    for (const std::string& err : texts) {
        const std::string first = lineAfter(err, "first:");
        EXPECT_TRUE(startsWith(first, "           #0  ")) << err;
        const std::size_t lock = err.find(hasLines() ? placeOf("lock") : "+0x");
        const std::size_t call = err.find(hasLines() ? placeOf("call") : " in " + addOnFile());
        EXPECT_NE(lock, std::string::npos) << err;
        EXPECT_NE(call, std::string::npos) << err;
        EXPECT_TRUE(!hasLines() || lock < call) << err;
        EXPECT_EQ(err.find("vexastandin"), std::string::npos) << err;
        EXPECT_EQ(err.find("libc.so"), std::string::npos) << err;
    }
}

TEST_P(SourceLines, AreInTheResultsForPrograms) {
    runWith("LOCK", {"--json", "r.json", "--sarif", "r.sarif"});
    const std::string results = read("r.json");
    const Json finding = Json::parse(results.substr(0, results.find('\n'))).at("findings").at(0);
    EXPECT_EQ(finding.at("opened").contains("line"), hasLines());
    const Json result = Json::parse(read("r.sarif")).at("runs").at(0).at("results").at(0);
    const Json place = result.at("locations").at(0).at("physicalLocation");
    const std::string uri = place.at("artifactLocation").at("uri");
    if (!hasLines()) {
        EXPECT_EQ(uri, "m.macro");
        return;
    }
    const std::string line = std::to_string(place.at("region").at("startLine").get<int>());
    EXPECT_EQ(uri + ':' + line, "file://" + placeOf("lock"));
    EXPECT_EQ(finding.at("opened").at("file").get<std::string>() + ':' + line, placeOf("lock"));
    const Json related = result.at("relatedLocations").at(0).at("physicalLocation");
    EXPECT_EQ(related.at("artifactLocation").at("uri"), "m.macro");
}

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST_P(SourceLines, AreNamedByATestOfMacrosAndItsReports) {
    write("m.macro", "MARKED LOCK\n");
    const ProgramResult result = runProgram(
        runner({"test", "m.macro", "--addon", GetParam(), "--strict", "--junit", "j.xml", "--annotate", "github"}));
    EXPECT_EQ(result.status, 1);
    expectPlaces(result.out, kBreaches[0]);
    EXPECT_EQ(contains(read("j.xml"), "at " + placeOf("lock") + ", in "), hasLines()) << read("j.xml");
    const std::size_t line = placeOf("lock").rfind(':');
    const std::string inSource =
        "::error file=" + placeOf("lock").replace(line, 1, ",line=") + ",title=unbalanced-lock";
    const std::string inMacro = "::error file=m.macro,line=1,title=unbalanced-lock";
    EXPECT_TRUE(contains(result.out, hasLines() ? inSource : inMacro)) << result.out;
}

TEST_P(SourceLines, AreNamedByACheck) {
    write("m.macro", "MARKED LOCK\n");
    const ProgramResult result =
        runProgram(runner({"check", GetParam(), "--macro", "m.macro", "--only", "commands-in-order"}));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(contains(result.out, "at " + placeOf("lock") + ", in "), hasLines()) << result.out;
    EXPECT_EQ(contains(result.out, "at " + placeOf("execute") + ", in "), hasLines()) << result.out;
}

TEST_P(SourceLines, AreNamedInTheConsole) {
    Program console = runner({"repl", "--addon", GetParam()});
    console.input = "MARKED LOCK\nMARKED FAIL\n";
    const std::string err = runProgram(console).err;
    expectPlaces(err, kBreaches[0]);
    EXPECT_EQ(contains(err, "MARKED: there is no such zone\n    at " + placeOf("fail") + ", in "), hasLines()) << err;
}

INSTANTIATE_TEST_SUITE_P(Variants, SourceLines, testing::ValuesIn(kAddOns), variantOf);

}  // namespace
}  // namespace vexa::e2e
