#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

// The line of BrokenAddOn.cpp that ends with `// MARK name`.
std::string lineOf(const std::string& mark) {
    std::ifstream source(BROKEN_SOURCE);
    const std::string end = "// MARK " + mark;
    std::string line;
    for (int number = 1; std::getline(source, line); ++number) {
        const bool isMarked = line.size() >= end.size() && line.compare(line.size() - end.size(), end.size(), end) == 0;
        if (isMarked) return std::to_string(number);
    }
    return "no mark " + mark;
}

// The last line of the source that gdb shows before the stack: `31<tab>text`.
std::string shownLine(const std::string& output) {
    std::istringstream lines(output.substr(0, output.find("\nStack:")));
    std::string shown = "none in: " + output;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t digits = line.find_first_not_of("0123456789");
        if (digits != 0 && digits != std::string::npos && line[digits] == '\t') shown = line.substr(0, digits);
    }
    return shown;
}

bool canTrace() {
    static const bool can = std::system(
                                "gdb -nx -batch -ex run --args true >/dev/null 2>&1 </dev/null && "
                                "gdb -nx -batch -ex starti -ex 'info registers' --args true 2>/dev/null "
                                "</dev/null | grep -q ^[re]ip") == 0;
    return can;
}

bool hasLldb() {
    static const bool has = std::system("command -v lldb >/dev/null") == 0;
    return has;
}

class Debug : public RunnerTest {
protected:
    void SetUp() override {
        if (!canTrace()) GTEST_SKIP() << "gdb is missing or cannot trace a program here";
    }

    static std::string addOn(const std::string& build) { return BROKEN_ADDONS "/broken-" + build + ".so"; }

    // `vexa-standin debug m.macro --addon BROKEN --batch --debugger DEBUGGER OPTIONS` for a macro of two commands, OK
    // and `command`.
    ProgramResult debug(const std::string& command, const Words& options, const std::string& build = "g++-0",
                        const std::string& debugger = "gdb") const {
        write("m.macro", "BROKEN OK\nBROKEN " + command + "\n");
        Words words = {"debug", "m.macro", "--addon", addOn(build), "--batch", "--debugger", debugger};
        words.insert(words.end(), options.begin(), options.end());
        return runProgram(runner(words));
    }
};

// ---- The place, for each debugger, compiler and optimization

struct PlaceCase {
    const char* command;
    Words options;
    const char* mark;
    bool isHiddenByGxx = false;  // after g++ -O2, gdb drops the line of the instruction
};

const std::vector<PlaceCase> kPlaces = {
    {"NOT_HELD", {"--rule", "mutex-not-held"}, "not-held"},  // broken in a call
    {"LOCK", {"--rule", "unbalanced-lock"}, "lock"},         // noticed when the command has returned
    {"ESCAPE", {"--rule", "escaped-exception"}, "throw"},
    {"FREE_TWICE", {"--rule", "double-free"}, "freed-again"},
    {"NOT_HELD", {"--call", "2"}, "not-held"},
    {"GUARD", {"--call", "1"}, "guard"},  // the library makes the call
    {"LOCK", {"--command", "2"}, "first-line"},
    {"THROW", {"--failure"}, "throw"},        // an earlier exception was handled
    {"PARSE", {"--failure"}, "parse", true},  // the library throws
    {"MESSAGE", {"--failure"}, "message"},
    {"HANG", {"--hang", "--timeout", "0.5"}, "hang"},
    {"CRASH", {"--crash"}, "crash"},
    {"EXIT", {"--crash"}, "exit"},
    {"LOCK", {}, "lock"},
    {"THROW", {}, "throw"},
    {"CRASH", {}, "crash"},
};

struct DebuggedBuild {
    const char* debugger;
    const char* build;
};

class DebugOfBuild : public Debug, public ::testing::WithParamInterface<DebuggedBuild> {};

TEST_P(DebugOfBuild, StopsAtTheLineOfThePlace) {
    const auto [debugger, build] = GetParam();
    if (debugger == std::string("lldb") && !hasLldb()) GTEST_SKIP() << "lldb is not installed";
    if (!fs::exists(addOn(build))) GTEST_SKIP() << "the compiler is missing";
    for (const PlaceCase& place : kPlaces) {
        if (place.isHiddenByGxx && build == std::string("g++-2")) continue;
        const ProgramResult result = debug(place.command, place.options, build, debugger);
        const std::string name = place.command + std::string(" ") + (place.options.empty() ? "" : place.options[0]);
        EXPECT_EQ(result.status, 0) << name << result.out << result.err;
        EXPECT_EQ(shownLine(result.out), lineOf(place.mark)) << name << '\n' << result.out;
    }
}

constexpr DebuggedBuild kBuilds[] = {{"gdb", "g++-0"},     {"gdb", "g++-2"},  {"gdb", "clang++-0"},
                                     {"gdb", "clang++-2"}, {"lldb", "g++-0"}, {"lldb", "clang++-2"}};

INSTANTIATE_TEST_SUITE_P(Builds, DebugOfBuild, ::testing::ValuesIn(kBuilds), [](const auto& build) {
    std::string name = build.param.build + std::string("_in_") + build.param.debugger;
    for (char& c : name) c = c == '+' ? 'x' : c == '-' ? 'O' : c;
    return name;
});

TEST_F(Debug, StopsWhereACommandReturnsThatMadeNoMessage) {
    EXPECT_EQ(shownLine(debug("SILENT", {"--failure"}).out), lineOf("silent"));
    EXPECT_EQ(shownLine(debug("SILENT", {"--rule", "missing-errmsg"}).out), lineOf("silent"));
}

TEST_F(Debug, PrintsTheStackAndTheVariables) {
    const std::string out = debug("FREE_TWICE", {"--rule", "double-free"}).out;
    EXPECT_NE(out.find("\nStack:\n#0 "), std::string::npos) << out;
    EXPECT_NE(out.find("execute (text="), std::string::npos) << out;
    EXPECT_NE(out.find("\nVariables:\nlist = 0x"), std::string::npos) << out;
}

TEST_F(Debug, GoesToWhereAFindingWasOpenedAndBack) {
    const Words commands = {"--rule", "double-free", "--", "-ex", "opened", "-ex", "seen"};
    const std::string out = debug("FREE_TWICE", commands).out;
    const std::string allocated = '\n' + lineOf("allocated") + '\t';
    const std::string again = '\n' + lineOf("freed-again") + '\t';
    const std::size_t first = out.find(again);
    const std::size_t opened = out.find(allocated, first);
    EXPECT_NE(opened, std::string::npos) << out;
    EXPECT_NE(out.find(again, opened), std::string::npos) << out;
}

// ---- lldb

class DebugWithLldb : public Debug {
protected:
    void SetUp() override {
        Debug::SetUp();
        if (!hasLldb()) GTEST_SKIP() << "lldb is not installed";
    }
};

TEST_F(DebugWithLldb, IsTheChoiceWhereGdbIsMissing) {
    write("m.macro", "BROKEN NOT_HELD\n");
    fs::create_directory(folder() / "bin");
    fs::create_symlink("/usr/bin/lldb", folder() / "bin" / "lldb");
    Program program = runner({"debug", "m.macro", "--addon", addOn("g++-0"), "--rule", "mutex-not-held", "--batch"});
    program.arguments.insert(program.arguments.begin(), {"/usr/bin/env", "PATH=" + (folder() / "bin").string()});
    const ProgramResult result = runProgram(program);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(shownLine(result.out), lineOf("not-held")) << result.out;
    EXPECT_NE(result.out.find("\nStack:\n* thread #1"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("\nVariables:\n(ThreadMutex_s *) mutex = 0x"), std::string::npos) << result.out;
}

TEST_F(DebugWithLldb, GoesToWhereAFindingWasOpenedAndBack) {
    const Words commands = {"--rule", "double-free", "--", "-o", "opened", "-o", "seen"};
    const std::string out = debug("FREE_TWICE", commands, "g++-0", "lldb").out;
    const std::string again = '\n' + lineOf("freed-again") + '\t';
    const std::size_t opened = out.find('\n' + lineOf("allocated") + '\t', out.find(again));
    EXPECT_NE(opened, std::string::npos) << out;
    EXPECT_NE(out.find(again, opened), std::string::npos) << out;
}

TEST_F(DebugWithLldb, SaysWhyThePlaceWasNotReached) {
    const ProgramResult result = debug("NOT_HELD", {"--call", "9"}, "g++-0", "lldb");
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.out.find("not reached: the run made only 3 host calls"), std::string::npos) << result.out;
    EXPECT_EQ(debug("EXIT", {"--call", "9"}, "g++-0", "lldb").status, 1);
    EXPECT_EQ(debug("CRASH", {"--call", "9"}, "g++-0", "lldb").status, 1);
}

// ---- Places that are not reached

TEST_F(Debug, SaysWhyThePlaceWasNotReached) {
    const std::pair<Words, const char*> cases[] = {
        {{"--rule", "unbalanced-lock"}, "the rule unbalanced-lock was not broken"},
        {{"--call", "9"}, "the run made only 3 host calls"},
        {{"--command", "3"}, "the run has only 2 commands"},
        {{"--failure"}, "no command failed"},
        {{"--hang"}, "every command returned within the time limit"},
        {{"--crash"}, "no add-on crashed"},
    };
    for (const auto& [options, reason] : cases) {
        const ProgramResult result = debug("NOT_HELD", options);
        EXPECT_EQ(result.status, 1) << options[0];
        EXPECT_NE(result.out.find(std::string("not reached: ") + reason), std::string::npos) << result.out;
    }
    EXPECT_EQ(debug("OK", {}).status, 1);
}

TEST_F(Debug, SaysThatTheProgramEndedBeforeThePlace) {
    const ProgramResult result = debug("EXIT", {"--call", "9"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.out.find("not reached: the program ended with status 3"), std::string::npos) << result.out;
    EXPECT_EQ(debug("CRASH", {"--call", "9"}).status, 1);
}

TEST_F(Debug, SaysThatTheMacroCannotBeRun) {
    write("m.macro", "OTHER OK\n");
    const ProgramResult result = runProgram(runner({"debug", "m.macro", "--addon", addOn("g++-0"), "--batch"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("m.macro:1: "), std::string::npos) << result.err;
}

TEST_F(Debug, SaysThatTheSystemRefusesToTrace) {
    write("m.macro", "BROKEN OK\n");
    Program program = runner({"debug", "m.macro", "--addon", addOn("g++-0"), "--batch"});
    program.arguments.insert(program.arguments.begin(), {REFUSING_SYSTEM, "ptrace", "--"});
    const ProgramResult result = runProgram(program);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err.rfind("debug: a debugger cannot trace programs here; ", 0), 0U) << result.err;
}

TEST_F(RunnerTest, DebugSaysThatNoDebuggerIsThere) {
    write("m.macro", "BROKEN OK\n");
    Program program = runner({"debug", "m.macro", "--addon", ADDON_ONE});
    program.arguments.insert(program.arguments.begin(), {"/usr/bin/env", "PATH=" + folder().string()});
    const ProgramResult result = runProgram(program);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "debug: neither gdb nor lldb was found; install one of them: apt-get install gdb\n");
}

TEST_F(RunnerTest, DebugSaysThatTheWantedDebuggerCannotBeUsed) {
    write("m.macro", "BROKEN OK\n");
    const std::pair<const char*, const char*> cases[] = {
        {"/nowhere/gdb", "debug: /nowhere/gdb was not found\n"},
        {"/bin/true", "debug: /bin/true has no Python; install the full gdb: apt-get install gdb\n"},
    };
    for (const auto& [debugger, message] : cases) {
        const ProgramResult result =
            runProgram(runner({"debug", "m.macro", "--addon", ADDON_ONE, "--debugger", debugger}));
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, message);
    }
}

TEST_F(RunnerTest, DebugRefusesASecondPlaceAndTheNumberZero) {
    write("m.macro", "BROKEN OK\n");
    const std::pair<Words, const char*> cases[] = {
        {{"--call", "1", "--hang"}, "--call and --hang: give only one place"},
        {{"--command", "0"}, "--command: the first one has number 1"},
    };
    for (const auto& [options, message] : cases) {
        Words words = {"debug", "m.macro", "--addon", ADDON_ONE};
        words.insert(words.end(), options.begin(), options.end());
        const ProgramResult result = runProgram(runner(words));
        EXPECT_EQ(result.status, 2);
        EXPECT_NE(result.err.find(message), std::string::npos) << result.err;
    }
}

// ---- The arguments

TEST_F(Debug, PassesTheArgumentsAfterTwoDashesToGdb) {
    const ProgramResult result = debug("NOT_HELD", {"--call", "2", "--", "-ex", "print 6 * 7", "-ex", "no-command"});
    EXPECT_NE(result.out.find("$1 = 42"), std::string::npos) << result.out;
    EXPECT_EQ(result.status, 0) << "the place was reached, whatever the user's commands did";
}

TEST_F(Debug, TakesPathsWithBlanksAndQuotes) {
    const std::string folderName = "it's a \"folder\" $HOME";
    fs::create_directory(folder() / folderName);
    fs::copy_file(addOn("g++-0"), folder() / folderName / "a b.so");
    write(folderName + "/m 1.macro", "BROKEN NOT_HELD\n");
    const ProgramResult result = runProgram(runner({"debug", folderName + "/m 1.macro", "--addon",
                                                    folderName + "/a b.so", "--rule", "mutex-not-held", "--batch"}));
    EXPECT_EQ(shownLine(result.out), lineOf("not-held")) << result.err;
}

// ---- The command that findings end with

// The command after `debug:` in `text`; the last one if there are several.
std::string printedCommand(const std::string& text) {
    const std::size_t line = text.rfind("    debug: ");
    const std::size_t begin = text.find("vexa-standin", line);
    if (line == std::string::npos || begin == std::string::npos) return "no command in: " + text;
    return text.substr(begin, text.find('\n', begin) - begin);
}

// The last command in the next line of the results that has one: findings come first.
std::string nextCommandIn(std::istream& results) {
    const std::string member = "\"debug\":\"";
    for (std::string line; std::getline(results, line);) {
        const std::size_t begin = line.rfind(member);
        if (begin == std::string::npos) continue;
        return line.substr(begin + member.size(), line.find('"', begin + member.size()) - begin - member.size());
    }
    return "no command";
}

class PrintedDebugCommand : public Debug {
protected:
    ProgramResult shell(const std::string& command) const {
        const std::string path = fs::path(VEXA_STANDIN).parent_path().string() + ':' + std::getenv("PATH");
        return runProgram({{"/usr/bin/env", "PATH=" + path, "/bin/sh", "-c", command}, folder(), "", false});
    }
};

TEST_F(PrintedDebugCommand, StopsAtTheFindingThatPrintedIt) {
    fs::create_directory(folder() / "it's");
    fs::copy_file(addOn("g++-0"), folder() / "it's" / "a b.so");
    write("it's/m.macro", "BROKEN NOT_HELD\nBROKEN FREE_TWICE\n");
    const std::string call = "vexa-standin run \"it's/m.macro\" --addon \"it's/a b.so\" --keep-going";
    const std::string printed = printedCommand(shell(call).err);
    EXPECT_EQ(printed,
              "vexa-standin debug 'it'\\''s/m.macro' --addon 'it'\\''s/a b.so' --keep-going --rule double-free");
    EXPECT_EQ(shownLine(shell(printed + " --batch").out), lineOf("freed-again"));
}

TEST_F(PrintedDebugCommand, NamesTheCallOfALaterFindingOfTheSameRule) {
    write("m.macro", "BROKEN NOT_HELD\nBROKEN NOT_HELD\n");
    const std::string printed = printedCommand(shell("vexa-standin run m.macro --addon " + addOn("g++-0")).err);
    EXPECT_NE(printed.find(" --call 5"), std::string::npos) << printed;
    const ProgramResult result = shell(printed + " --batch");
    EXPECT_EQ(shownLine(result.out), lineOf("not-held")) << result.out;
}

TEST_F(PrintedDebugCommand, IsPrintedByTestAndCheck) {
    write("m.macro", "BROKEN NOT_HELD\n");
    const std::string addOns = " --addon " + addOn("g++-0");
    const std::string ofTest = printedCommand(shell("vexa-standin test --strict m.macro" + addOns).out);
    EXPECT_NE(ofTest.find(" --rule mutex-not-held"), std::string::npos) << ofTest;
    EXPECT_EQ(shownLine(shell(ofTest + " --batch").out), lineOf("not-held"));
    const std::string checked = "vexa-standin check " + addOn("g++-0") + " --macro m.macro --only commands-in-order";
    const std::string ofCheck = printedCommand(shell(checked).out);
    EXPECT_EQ(shownLine(shell(ofCheck + " --batch").out), lineOf("not-held")) << ofCheck;
}

TEST_F(PrintedDebugCommand, OfAFailedCommandIsInItsResultAndStopsThere) {
    write("m.macro", "BROKEN OK\nBROKEN MESSAGE\nBROKEN SILENT\n");
    const std::string err = shell("vexa-standin run m.macro --keep-going --json r.jsonl --addon " + addOn("g++-0")).err;
    EXPECT_GT(err.find("debug: "), err.find("m.macro:3")) << "only the finding has one: " << err;
    std::istringstream results(read("r.jsonl"));
    const std::string first = nextCommandIn(results);
    EXPECT_NE(first.find(" --failure"), std::string::npos) << first;
    EXPECT_EQ(shownLine(shell(first + " --batch").out), lineOf("message"));
    const std::string later = nextCommandIn(results);
    EXPECT_NE(later.find(" --command 3"), std::string::npos) << later;
    EXPECT_EQ(shownLine(shell(later + " --batch").out), lineOf("first-line"));
}

TEST_F(PrintedDebugCommand, StopsAtTheCrashThatPrintedIt) {
    write("m.macro", "BROKEN CRASH\n");
    const std::string printed = printedCommand(shell("vexa-standin run m.macro --addon " + addOn("g++-0")).err);
    EXPECT_NE(printed.find(" --crash"), std::string::npos) << printed;
    EXPECT_EQ(shownLine(shell(printed + " --batch").out), lineOf("crash"));
}

TEST_F(PrintedDebugCommand, StopsInTheHangThatPrintedIt) {
    write("m.macro", "BROKEN HANG\n");
    const std::string call = "vexa-standin run m.macro --timeout 0.5 --addon " + addOn("g++-0");
    const std::string printed = printedCommand(shell(call).err);
    EXPECT_NE(printed.find(" --hang"), std::string::npos) << printed;
    EXPECT_EQ(shownLine(shell(printed + " --batch").out), lineOf("hang"));
}

TEST_F(PrintedDebugCommand, IsInTheResultsAndInSarif) {
    const std::pair<const char*, const char*> cases[] = {
        {"NOT_HELD", " --rule mutex-not-held"}, {"CRASH", " --crash"}, {"HANG", " --hang"}};
    for (const auto& [command, option] : cases) {
        write("m.macro", std::string("BROKEN ") + command + '\n');
        const std::string files = " --json r.jsonl --sarif r.sarif --timeout 0.5 --addon ";
        const std::string printed = printedCommand(shell("vexa-standin run m.macro" + files + addOn("g++-0")).err);
        EXPECT_NE(printed.find(option), std::string::npos) << printed;
        const std::string member = "\"debug\":\"" + printed + '"';
        EXPECT_NE(read("r.jsonl").find(member), std::string::npos) << read("r.jsonl");
        EXPECT_NE(read("r.sarif").find("\"debug\": \"" + printed + '"'), std::string::npos) << read("r.sarif");
    }
}

TEST_F(PrintedDebugCommand, IsInTheReportsOfCheck) {
    write("m.macro", "BROKEN NOT_HELD\n");
    const std::string files = " --only commands-in-order --json c.json --sarif c.sarif";
    const std::string printed =
        printedCommand(shell("vexa-standin check " + addOn("g++-0") + " --macro m.macro" + files).out);
    EXPECT_NE(read("c.json").find("\"debug\": \"" + printed + '"'), std::string::npos) << read("c.json");
    EXPECT_NE(read("c.sarif").find("\"debug\": \"" + printed + '"'), std::string::npos) << read("c.sarif");
}

TEST_F(RunnerTest, NoDebugCommandIsPrintedForAMacroFromTheStandardInput) {
    Program program = runner({"run", "-", "--addon", BROKEN_ADDONS "/broken-g++-0.so"});
    program.input = "BROKEN NOT_HELD\n";
    const ProgramResult result = runProgram(program);
    EXPECT_NE(result.err.find("[mutex-not-held]"), std::string::npos) << result.err;
    EXPECT_EQ(result.err.find("debug:"), std::string::npos) << result.err;
}

}  // namespace
}  // namespace vexa::e2e
