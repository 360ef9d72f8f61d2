// Tests that damaged commands cannot change files outside the folder of the check.

#include <nlohmann/json.hpp>

#include "CheckRunnerTest.h"

namespace vexa::e2e {
namespace {

namespace fs = std::filesystem;

const char* const kAddOn = CHECK_ADDONS "/writer.so";
const char* const kInside = "work";                   // where the check runs
const char* const kOutside = "outside-of-the-check";  // the folder that its commands name

const std::string kFile = std::string(kOutside) + "/file";

// Commands of the add-on that change a file.
constexpr const char* kCounted[] = {"SAVE", "OPEN", "CUT", "DROP", "MAKE", "MOVE", "LINK"};

class CheckConfinement : public CheckRunnerTest {
protected:
    CheckConfinement() {
        for (const char* name : {kInside, kOutside, "tmp"}) fs::create_directory(folder() / name);
        write(kFile, "kept\n");
    }

    // Checks the add-on by damaged variants of a command that names a file outside.
    ProgramResult checkCommand(const std::string& command, std::vector<std::string> options = {},
                               const std::vector<std::string>& system = {}) const {
        write("work/m.macro", "WRITER " + command + " FILE = '" + (folder() / kFile).string() + "'\n");
        options.insert(options.begin(), {"check", kAddOn, "--macro", "m.macro", "--level", "3", "--only",
                                         "mutated-text", "--time", "0.5"});
        Program program = runner(options);
        program.folder = folder() / kInside;
        if (!system.empty()) {
            program.arguments.insert(program.arguments.begin(), "--");
            program.arguments.insert(program.arguments.begin(), system.begin(), system.end());
        }
        program.arguments.insert(program.arguments.begin(), {"/usr/bin/env", "TMPDIR=" + (folder() / "tmp").string()});
        return runProgram(program);
    }

    std::vector<std::string> namesIn(const char* name) const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder() / name)) names.push_back(entry.path().filename());
        return names;
    }

    void expectNothingChanged() const {
        EXPECT_EQ(read(kFile), "kept\n");
        EXPECT_EQ(namesIn(kOutside), std::vector<std::string>{"file"});
        EXPECT_EQ(namesIn("tmp"), std::vector<std::string>{});
    }
};

const char* const kRefused = " to change files outside of its folder were refused\n";

TEST_F(CheckConfinement, KeepsFilesOutsideOfTheScratchFolder) {
    for (const char* command : kCounted) {
        SCOPED_TRACE(command);
        const ProgramResult result = checkCommand(command);
        EXPECT_EQ(result.status, 0) << result.out << result.err;
        EXPECT_TRUE(cameOut(result, "mutated-text", "passed")) << result.out;
        EXPECT_TRUE(has(result, kRefused)) << result.out;
        expectNothingChanged();
        EXPECT_EQ(namesIn(kInside), std::vector<std::string>{"m.macro"});
    }
}

TEST_F(CheckConfinement, HoldsForProgramsThatAnAddOnStarts) {
    const ProgramResult result = checkCommand("SHELL");
    EXPECT_EQ(result.status, 0) << result.out << result.err;
    expectNothingChanged();
}

TEST_F(CheckConfinement, LeavesAFolderForTemporaryFiles) {
    const ProgramResult result = checkCommand("TEMPORARY");
    EXPECT_TRUE(cameOut(result, "mutated-text", "passed")) << result.out;
    EXPECT_FALSE(has(result, "refused")) << result.out;
    expectNothingChanged();
}

TEST_F(CheckConfinement, IsCountedInEveryReport) {
    checkCommand("SAVE", {"--json", "c.json", "--junit", "c.xml", "--sarif", "c.sarif"});
    const auto report = nlohmann::json::parse(read("work/c.json"));
    const std::size_t count = report.at("tests").at(1).at("refusedWrites");
    EXPECT_EQ(report.at("tests").at(0).at("refusedWrites"), 0);
    EXPECT_GT(count, 0U);
    EXPECT_NE(report.at("tests").at(1).at("reason").get<std::string>().find(std::to_string(count) + " attempts"),
              std::string::npos);
    EXPECT_NE(read("work/c.xml").find("<property name=\"refused-writes\" value=\"" + std::to_string(count) + "\"/>"),
              std::string::npos);
    EXPECT_EQ(nlohmann::json::parse(read("work/c.sarif")).at("runs").at(0).at("properties").at("refusedWrites"), count);
}

TEST_F(CheckConfinement, IsByMountsWhereThereIsNoLandlock) {
    const ProgramResult result = checkCommand("SAVE", {}, {REFUSING_SYSTEM, "landlock"});
    if (has(result, "nothing to confine it by")) GTEST_SKIP() << "the system grants no mounts: " << result.out;
    EXPECT_TRUE(cameOut(result, "mutated-text", "passed")) << result.out;
    EXPECT_TRUE(has(result, kRefused)) << result.out;
    expectNothingChanged();
}

TEST_F(CheckConfinement, IsNeededForDamagedCommands) {
    const ProgramResult result = checkCommand("SAVE", {}, {REFUSING_SYSTEM, "landlock", "unshare"});
    EXPECT_EQ(result.status, 0) << result.out << result.err;
    EXPECT_TRUE(cameOut(result, "mutated-text", "skipped")) << result.out;
    EXPECT_TRUE(has(result,
                    "its commands may write to any file, and this system cannot confine it: cannot "
                    "create separate mounts: Operation not permitted"))
        << result.out;
    expectNothingChanged();
}

TEST_F(CheckConfinement, NeedsAProcessOfItsOwn) {
    const ProgramResult result = checkCommand("SAVE", {"--in-process"});
    EXPECT_TRUE(cameOut(result, "mutated-text", "skipped")) << result.out;
    EXPECT_TRUE(has(result, "only a separate process can be confined")) << result.out;
    expectNothingChanged();
}

}  // namespace
}  // namespace vexa::e2e
