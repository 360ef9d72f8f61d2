// Facts about hosts: the commands probe and compare-hosts, and the option --host.

#include <nlohmann/json.hpp>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

using Json = nlohmann::ordered_json;

class HostFacts : public RunnerTest {
protected:
    /// A facts file with one fact, whose answer is JSON.
    static std::string factsFile(const std::string& name, const std::string& answer) {
        return R"({"schema": 1, "probe": "1.0.0", "facts": {")" + name + R"(": {"question": "Is it?", "answer": )" +
               answer + "}}}\n";
    }
    ProgramResult compare(const std::vector<std::string>& options = {}) const {
        std::vector<std::string> arguments = {"compare-hosts", "a.json", "b.json"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return runProgram(runner(arguments));
    }
    Json facts(const std::string& name) const { return Json::parse(read(name))["facts"]; }
};

using ProbeCommand = HostFacts;
using CompareHosts = HostFacts;
using HostOption = HostFacts;

TEST_F(ProbeCommand, WritesAnAnswerToEachQuestion) {
    const ProgramResult result = runProgram(runner({"probe", "-o", "facts.json"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out + result.err, "");
    const Json all = facts("facts.json");
    EXPECT_FALSE(all.empty());
    for (const auto& [name, fact] : all.items()) EXPECT_FALSE(fact["answer"].is_null()) << name;
}

TEST_F(ProbeCommand, LeavesOnlyTheFactsFile) {
    runProgram(runner({"probe", "-o", "facts.json"}));
    EXPECT_EQ(fileNames(), std::vector<std::string>{"facts.json"});
}

TEST_F(ProbeCommand, PrintsTheFactsToTheStandardOutput) {
    const ProgramResult result = runProgram(runner({"probe", "-o", "-"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(Json::parse(result.out)["schema"], 1);
}

TEST_F(ProbeCommand, ReplacesAnOldFile) {
    write("facts.json", "old");
    EXPECT_EQ(runProgram(runner({"probe", "-o", "facts.json"})).status, 0);
    EXPECT_EQ(facts("facts.json")["state.batch"]["answer"], false);
}

TEST_F(ProbeCommand, AnswersLikeAnotherHost) {
    write("host.json", factsFile("list.append.most", "7"));
    EXPECT_EQ(runProgram(runner({"probe", "--host", "host.json", "-o", "facts.json"})).status, 0);
    EXPECT_EQ(facts("facts.json")["list.append.most"]["answer"], 7);
}

TEST_F(ProbeCommand, RefusesToReplaceItsInput) {
    const std::string host = factsFile("list.append.most", "7");
    write("host.json", host);
    const ProgramResult result = runProgram(runner({"probe", "--host", "host.json", "-o", "./host.json"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "./host.json: cannot be written: the command also uses it as host.json\n");
    EXPECT_EQ(read("host.json"), host);
}

TEST_F(ProbeCommand, SaysThatTheFileCannotBeWritten) {
    const ProgramResult result = runProgram(runner({"probe", "-o", "nowhere/facts.json"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "nowhere/facts.json: cannot be written: its folder does not exist\n");
}

TEST_F(ProbeCommand, NeedsAFile) {
    const ProgramResult result = runProgram(runner({"probe"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "vexa-standin: --output is required\nrun 'vexa-standin probe --help' for the usage\n");
}

TEST_F(ProbeCommand, PrintsTheFactsOfTheDocumentation) {
    std::ifstream file(VEXA_DOCS "/facts.md", std::ios::binary);
    const std::string page{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(runProgram(runner({"probe", "--markdown"})).out, page)
        << "renew it: vexa-standin probe --markdown > docs/facts.md, in the folder of the sources";
}

TEST_F(CompareHosts, FindsNoDifferenceInEqualFiles) {
    write("a.json", factsFile("state.batch", "true"));
    write("b.json", factsFile("state.batch", "true"));
    const ProgramResult result = compare();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "0 differences\n");
}

TEST_F(CompareHosts, PrintsEachDifferenceWithItsQuestion) {
    write("a.json", factsFile("list.append.most", "1000"));
    write("b.json", factsFile("list.append.most", "7"));
    const ProgramResult result = compare();
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              "fact              a.json  b.json  question\n"
              "list.append.most  1000    7       Is it?\n"
              "1 difference\n");
}

TEST_F(CompareHosts, DoesNotCallAMissingAnswerADifference) {
    write("a.json", factsFile("lock.nests", R"(null, "reason": "not asked")"));
    write("b.json", factsFile("lock.nests", "true"));
    const ProgramResult result = compare();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "0 differences\nno answer in a.json: lock.nests; not asked\n");
}

TEST_F(CompareHosts, NamesAFactThatOnlyOneFileHas) {
    write("a.json", factsFile("lock.nests", "true"));
    write("b.json", factsFile("state.batch", "true"));
    const ProgramResult result = compare();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "0 differences\n"
              "no answer in b.json: lock.nests; the file does not name it\n"
              "no answer in a.json: state.batch; the file does not name it\n");
}

TEST_F(CompareHosts, WritesTheDifferencesForPrograms) {
    write("a.json", factsFile("set.insert.reversed", R"("refused")"));
    write("b.json", factsFile("set.insert.reversed", R"("swapped")"));
    EXPECT_EQ(compare({"--json", "differences.json"}).status, 1);
    const Json expected = {
        {"files", {"a.json", "b.json"}},
        {"differences",
         {{{"fact", "set.insert.reversed"}, {"question", "Is it?"}, {"answers", {"refused", "swapped"}}}}},
        {"unanswered", Json::array()}};
    EXPECT_EQ(Json::parse(read("differences.json")), expected);
}

TEST_F(CompareHosts, KeepsTheTableOutOfJsonOnTheStandardOutput) {
    write("a.json", factsFile("state.batch", "true"));
    write("b.json", factsFile("state.batch", "false"));
    const ProgramResult result = compare({"--json", "-"});
    EXPECT_EQ(Json::parse(result.out)["differences"].size(), 1U);
    EXPECT_NE(result.err.find("1 difference\n"), std::string::npos);
}

TEST_F(CompareHosts, RefusesToReplaceAnInput) {
    const std::string file = factsFile("state.batch", "true");
    write("a.json", file);
    write("b.json", file);
    EXPECT_EQ(compare({"--json", "b.json"}).status, 2);
    EXPECT_EQ(read("b.json"), file);
}

TEST_F(CompareHosts, NeedsTwoFiles) {
    EXPECT_EQ(runProgram(runner({"compare-hosts", "a.json"})).status, 2);
    EXPECT_EQ(runProgram(runner({"compare-hosts", "a.json", "b.json", "c.json"})).status, 2);
}

TEST_F(CompareHosts, SaysWhatIsWrongWithAFile) {
    const std::pair<const char*, const char*> wrong[] = {
        {"nothing", "a.json:1:1: no facts file: "},
        {"{\"schema\": 1}", "a.json:1:1: no facts file: 'facts' is missing\n"},
        {"[]", "a.json:1:1: no facts file: expected an object with 'schema'\n"},
        {"{\n\"schema\": 2, \"facts\": {}}", "a.json:2:11: no facts file: expected schema 1\n"},
        {"{\"schema\": 1, \"facts\": []}", "a.json:1:24: no facts file: expected an object with the facts\n"},
        {"{\"schema\": 1, \"facts\": {\"x\": {}}}", "a.json:1:30: no facts file: 'answer' is missing\n"},
        {"{\"schema\": 1, \"facts\": {\"x\": {\"answer\": [1]}}}",
         "a.json:1:41: no facts file: expected an answer: true, false, an integer, a text or null\n"},
        {"{\"schema\": 1, \"facts\": {\"x\": {\"answer\": 1, \"question\": 2}}}",
         "a.json:1:56: no facts file: expected a text\n"},
        {"{\"schema\": 1, \"facts\": {\"x\": {\"answer\": 1}, \"x\": {\"answer\": 1}}}",
         "a.json:1:45: no facts file: the fact is given twice\n"},
    };
    write("b.json", factsFile("state.batch", "true"));
    for (const auto& [content, message] : wrong) {
        write("a.json", content);
        const ProgramResult result = compare();
        EXPECT_EQ(result.status, 2) << content;
        EXPECT_EQ(result.err.substr(0, std::string(message).size()), message);
    }
}

TEST_F(CompareHosts, SaysThatAFileCannotBeRead) {
    write("a.json", factsFile("state.batch", "true"));
    const ProgramResult result = compare();
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "b.json: cannot be read: No such file or directory\n");
}

TEST_F(CompareHosts, PrintsNothingThatSteersTheTerminal) {
    write("a.json", factsFile("x", R"("\u001b[31m")"));
    write("b.json", factsFile("x", R"("plain")"));
    EXPECT_EQ(compare().out.find('\x1b'), std::string::npos);
}

// ---- --host

TEST_F(HostOption, LetsARunGoOnAfterAFailure) {
    write("host.json", factsFile("macro.goesOnAfterFailure", "true"));
    const std::string macro = "ONE FAIL now\nONE SAY later\n";
    EXPECT_EQ(runMacro(macro).out.find("later"), std::string::npos);
    EXPECT_NE(runMacro(macro, {"--host", "host.json"}).out.find("later"), std::string::npos);
}

TEST_F(HostOption, NamesEachFactThatIsNotImitated) {
    write("host.json", factsFile("lock.nests", "false"));
    const ProgramResult result = runMacro("ONE SAY done\n", {"--host", "host.json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err,
              "host.json: not imitated: lock.nests = false; the stand-in answers true: a stand-in that hangs tests "
              "nothing\n");
}

TEST_F(HostOption, SaysWhatIsWrongWithTheFile) {
    write("host.json", "[]");
    const ProgramResult result = runMacro("ONE SAY done\n", {"--host", "host.json"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "host.json:1:1: no facts file: expected an object with 'schema'\n");
}

TEST_F(HostOption, IsAnInputThatNoOutputReplaces) {
    const std::string file = factsFile("state.batch", "true");
    write("host.json", file);
    EXPECT_EQ(runMacro("ONE SAY done\n", {"--host", "host.json", "--record", "host.json"}).status, 2);
    EXPECT_EQ(read("host.json"), file);
}

TEST_F(HostOption, ComesFromTheProjectFileToo) {
    std::filesystem::create_directory(folder() / "below");
    write("vexa-standin.toml", "host = \"below/host.json\"\n");
    write("below/host.json", factsFile("macro.goesOnAfterFailure", "true"));
    Program program = runner({"run", "m.macro", "--addon", ADDON_ONE});
    write("below/m.macro", "ONE FAIL now\nONE SAY later\n");
    program.folder = folder() / "below";
    EXPECT_NE(runProgram(program).out.find("later"), std::string::npos);
}

TEST_F(HostOption, ReplacesTheOneOfTheProjectFile) {
    write("vexa-standin.toml", "host = \"none.json\"\n");
    write("host.json", factsFile("macro.goesOnAfterFailure", "true"));
    EXPECT_EQ(runMacro("ONE SAY done\n").err,
              (folder() / "none.json: cannot be read: No such file or directory\n").string());
    EXPECT_EQ(runMacro("ONE SAY done\n", {"--host", "host.json"}).status, 0);
}

TEST_F(HostOption, IsRefusedInAProjectFileIfItIsNoName) {
    write("vexa-standin.toml", "host = 3\n");
    const ProgramResult result = runMacro("ONE SAY done\n");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("vexa-standin.toml:1: host: expected the name of a facts file\n"), std::string::npos);
}

class HostOptionOfProbe : public HostFacts {
protected:
    // The probe as an add-on: it says how the host answered.
    std::string factFrom(const std::vector<std::string>& arguments, const std::string& input = "") {
        write("host.json", factsFile("list.append.most", "7"));
        write("ask.macro", "VEXAPROBE WRITE FILE = 'facts.json'\n");
        Program program = runner(arguments);
        for (const char* const argument : {"--host", "host.json", "--addon", VEXA_PROBE}) {
            program.arguments.emplace_back(argument);
        }
        program.input = input;
        runProgram(program);
        return facts("facts.json")["list.append.most"]["answer"].dump();
    }
};

TEST_F(HostOptionOfProbe, WorksForTest) { EXPECT_EQ(factFrom({"test", "ask.macro", "--accept"}), "7"); }

TEST_F(HostOptionOfProbe, WorksForRun) { EXPECT_EQ(factFrom({"run", "ask.macro"}), "7"); }

TEST_F(HostOptionOfProbe, WorksForRepl) { EXPECT_EQ(factFrom({"repl"}, "VEXAPROBE WRITE FILE = 'facts.json'\n"), "7"); }

TEST_F(HostOptionOfProbe, WorksForCheck) {
    write("host.json", factsFile("list.append.most", "7"));
    write("ask.macro", "VEXAPROBE WRITE FILE = 'facts.json'\n");
    const ProgramResult result = runProgram(
        runner({"check", VEXA_PROBE, "--macro", "ask.macro", "--only", "commands-alone", "--host", "host.json"}));
    EXPECT_EQ(result.status, 0) << result.out << result.err;
    EXPECT_EQ(facts("facts.json")["list.append.most"]["answer"], 7);
}

}  // namespace
}  // namespace vexa::e2e
