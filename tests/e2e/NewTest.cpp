#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <regex>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

namespace fs = std::filesystem;

class New : public RunnerTest {
protected:
    ProgramResult writeNew(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "new");
        return runProgram(runner(std::move(arguments)));
    }
    // What the project in `name` has in its description: the id and the title.
    std::string descriptionIn(const std::string& name) const {
        const std::string source = read(name + "/src/AddOn.cpp");
        const std::size_t begin = source.find("constexpr const char* kId");
        return source.substr(begin, source.find("\n\n", begin) - begin);
    }
    static std::string description(const std::string& id, const std::string& title) {
        return "constexpr const char* kId = \"" + id + "\";\nconstexpr const char* kTitle = \"" + title + "\";";
    }
    std::size_t entries() const {
        return static_cast<std::size_t>(std::distance(fs::recursive_directory_iterator(folder()), {}));
    }
};

TEST_F(New, WritesAProjectAndTellsHowToBuildIt) {
    const ProgramResult result = writeNew({"wake-probe"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_NE(result.out.find("\n  cd wake-probe\n  cmake --preset release"), std::string::npos) << result.out;
    for (const char* file : {".clang-format",
                             ".gitignore",
                             "CMakeLists.txt",
                             "CMakePresets.json",
                             "README.md",
                             "addon.commands.json",
                             "ci",
                             "src/AddOn.cpp",
                             "src/RepeatCommand.cpp",
                             "src/RepeatCommand.h",
                             "tests/RepeatTest.cpp",
                             "tests/macros/repeat.macro",
                             "tests/macros/repeat.expected",
                             ".github/workflows/ci.yml",
                             ".gitlab-ci.yml",
                             ".clangd",
                             ".vscode/commands.schema.json",
                             ".vscode/extensions/vexa-macros/client.js",
                             ".vscode/extensions/vexa-macros/extension.js",
                             ".vscode/extensions/vexa-macros/language-configuration.json",
                             ".vscode/extensions/vexa-macros/macro.tmLanguage.json",
                             ".vscode/extensions/vexa-macros/package.json",
                             "editors/vim/ftdetect/vexamacro.vim",
                             "editors/vim/syntax/vexamacro.vim",
                             ".vscode/launch.json",
                             ".vscode/settings.json",
                             ".vscode/tasks.json"}) {
        EXPECT_GT(fs::file_size(folder() / "wake-probe" / file), 0U) << file;
    }
}

TEST_F(New, LeavesNoPlaceholder) {
    writeNew({"wake-probe"});
    for (const auto& entry : fs::recursive_directory_iterator(folder())) {
        if (!entry.is_regular_file()) continue;
        const std::string text = read(fs::relative(entry.path(), folder()));
        EXPECT_FALSE(std::regex_search(text, std::regex("@[A-Z_]+@"))) << entry.path();
    }
}

TEST_F(New, KeepsEachFileShort) {
    writeNew({"wake-probe"});
    for (const auto& entry : fs::recursive_directory_iterator(folder())) {
        if (!entry.is_regular_file()) continue;
        const std::string text = read(fs::relative(entry.path(), folder()));
        const bool isForPrograms = entry.path().filename() == "commands.schema.json";
        EXPECT_LE(std::count(text.begin(), text.end(), '\n'), isForPrograms ? 700 : 70) << entry.path();
    }
}

TEST_F(New, ListsTheDebianPackagesThatTheProjectNeeds) {
    writeNew({"p"});
    EXPECT_NE(read("p/CMakePresets.json").find("\"generator\": \"Ninja\""), std::string::npos);
    EXPECT_NE(read("p/README.md")
                  .find("    apt-get install cmake g++ libgtest-dev ninja-build "
                        "libvexautilutil-utils-dev vexa-standin\n"),
              std::string::npos);
}

TEST_F(New, MayRunTheScriptOnly) {
    writeNew({"p"});
    const auto mayRun = [&](const char* file) {
        return (fs::status(folder() / "p" / file).permissions() & fs::perms::owner_exec) != fs::perms::none;
    };
    EXPECT_TRUE(mayRun("ci"));
    EXPECT_FALSE(mayRun("README.md"));
}

TEST_F(New, NamesTheAddOnAfterTheFolder) {
    struct Case {
        const char* folder;
        const char* file;
        const char* id;
        const char* title;
    };
    const Case cases[] = {
        {"wake-probe", "wake-probe", "WAKEPROBE", "Wake probe"},
        {"deep/er/Wake_2/", "Wake_2", "WAKE2", "Wake 2"},
        {"42", "addon-42", "ADDON42", "Addon 42"},
        {"--", "addon---", "ADDON", "Addon   "},
        {"wake.2+b", "wake.2+b", "WAKE2B", "Wake.2+b"},
        {"Test", "Test", "TEST", "Test"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.folder);
        const ProgramResult result = writeNew({"--", c.folder});
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(descriptionIn(c.folder), description(c.id, c.title));
        EXPECT_NE(read(std::string(c.folder) + "/CMakeLists.txt").find("project(" + std::string(c.file) + " "),
                  std::string::npos);
        EXPECT_EQ(read(std::string(c.folder) + "/tests/macros/repeat.expected").rfind("> " + std::string(c.id), 0), 0U);
    }
}

TEST_F(New, RefusesANameThatCMakeKeepsForItself) {
    for (const std::string name :
         {"all", "ALL_BUILD", "clean", "edit_cache", "help", "install", "INSTALL", "package", "PACKAGE",
          "package_source", "preinstall", "rebuild_cache", "RUN_TESTS", "test", "ZERO_CHECK", "CMAKE"}) {
        SCOPED_TRACE(name);
        const ProgramResult result = writeNew({"deep/" + name});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err,
                  "deep/" + name + ": CMake reserves the name '" + name + "'; choose another name for the folder\n");
        EXPECT_EQ(result.out, "");
    }
    EXPECT_EQ(entries(), 0U);
}

TEST_F(New, RefusesANameWithACharacterThatCMakeRefuses) {
    for (const std::string name : {"a b", "a\"c", "Größe", "a:b", "a~b", "a@b", "a,b"}) {
        SCOPED_TRACE(name);
        const ProgramResult result = writeNew({name});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, name + ": '" + name +
                                  "' cannot be a CMake target; expected letters, digits, '_', '-', '.' and '+'; "
                                  "choose another name for the folder\n");
    }
    EXPECT_EQ(entries(), 0U);
}

TEST_F(New, TakesIdAndTitle) {
    ASSERT_EQ(writeNew({"p", "--id", "Wake-2_b", "--title", "Größe \"x\" \\ @ID@"}).status, 0);
    EXPECT_EQ(descriptionIn("p"), description("Wake-2_b", R"(Größe \"x\" \\ @ID@)"));
    EXPECT_NE(read("p/README.md").find("Größe \"x\" \\ @ID@: an add-on."), std::string::npos);
}

TEST_F(New, RefusesAnIdOrTitleThatDoesNotFit) {
    struct Case {
        const char* why;
        std::vector<std::string> arguments;
        const char* err;
    };
    const char* const noId = "vexa-standin: --id: expected an id: a letter, then letters, digits, '_' and '-'\n";
    const char* const noTitle = "vexa-standin: --title: expected a title: a line of text\n";
    const Case cases[] = {
        {"empty", {"p", "--id", ""}, noId},
        {"a macro line would end there", {"p", "--id", "A B"}, noId},
        {"a macro line would be a comment", {"p", "--id", "#A"}, noId},
        {"begins with a digit", {"p", "--id", "1A"}, noId},
        {"a quote", {"p", "--id", "A\""}, noId},
        {"no ASCII", {"p", "--id", "Ä"}, noId},
        {"an empty title", {"p", "--title", ""}, noTitle},
        {"a title of two lines", {"p", "--title", "a\nb"}, noTitle},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const ProgramResult result = writeNew(c.arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err.rfind(c.err, 0), 0U) << result.err;
        EXPECT_EQ(entries(), 0U);
    }
}

TEST_F(New, GoesIntoAFolderThatIsEmpty) {
    fs::create_directory(folder() / "p");
    Program program = runner({"new", "."});
    program.folder = folder() / "p";
    EXPECT_EQ(runProgram(program).status, 0);
    EXPECT_EQ(descriptionIn("p"), description("P", "P"));
}

TEST_F(New, OverwritesNothing) {
    fs::create_directory(folder() / "full");
    write("full/a", "mine");
    write("file", "mine");
    EXPECT_EQ(writeNew({"full"}).err, "full: it exists and is not empty\n");
    const ProgramResult result = writeNew({"file"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "file: it exists and is not a folder\n");
    EXPECT_EQ(writeNew({"file/p"}).status, 2);
    EXPECT_EQ(entries(), 3U);
    EXPECT_EQ(read("file"), "mine");
}

TEST_F(New, LeavesNothingHalfWritten) {
    fs::create_directory(folder() / "there");
    for (const std::string path : {"there", "deep/er/p"}) {
        SCOPED_TRACE(path);
        const std::string command = "trap '' XFSZ; ulimit -f 1; exec " VEXA_STANDIN " new " + path;
        const ProgramResult result = runProgram({{"bash", "-c", command}, folder(), "", false});
        EXPECT_EQ(result.status, 2);
        EXPECT_NE(result.err.find("cannot be written: File too large"), std::string::npos) << result.err;
        EXPECT_EQ(entries(), 1U) << "the folder that was there";
    }
}

TEST_F(New, LeavesOutTheFilesForEditors) {
    ASSERT_EQ(writeNew({"with", "--editor"}).status, 0);
    ASSERT_EQ(writeNew({"without", "--no-editor"}).status, 0);
    for (const char* file : {".vscode/tasks.json", ".vscode/launch.json", ".vscode/settings.json", ".clangd"}) {
        EXPECT_TRUE(fs::exists(folder() / "with" / file)) << file;
    }
    EXPECT_FALSE(fs::exists(folder() / "without/.vscode"));
    EXPECT_FALSE(fs::exists(folder() / "without/.clangd"));
    EXPECT_FALSE(fs::exists(folder() / "without/editors"));
    EXPECT_TRUE(fs::exists(folder() / "without/.gitlab-ci.yml"));
}

// The problem matcher that a new project has for VS Code.
class ProblemMatcher : public New {
protected:
    void SetUp() override {
        ASSERT_EQ(writeNew({"p"}).status, 0);
        const auto tasks = nlohmann::json::parse(read("p/.vscode/tasks.json"));
        for (const auto& task : tasks.at("tasks")) {
            if (task.at("problemMatcher").is_object()) m_matchers.push_back(task.at("problemMatcher"));
        }
        ASSERT_EQ(m_matchers.size(), 2U);
    }

    const nlohmann::json& matcher() const { return m_matchers.front(); }
    const std::vector<nlohmann::json>& matchers() const { return m_matchers; }

    // The problems in `lines`, a line each: file, line, severity, message, code.
    std::string problemsIn(const std::string& lines) const {
        const nlohmann::json& pattern = matcher().at("pattern");
        const std::regex regex(pattern.at("regexp").get<std::string>());
        std::istringstream text(lines);
        std::string problems;
        for (std::string line; std::getline(text, line);) {
            std::smatch match;
            if (!std::regex_match(line, match, regex)) continue;
            for (const char* part : {"file", "line", "severity", "message", "code"}) {
                problems += match[pattern.at(part).get<std::size_t>()].str() + (part[0] == 'c' ? "\n" : "|");
            }
        }
        return problems;
    }

private:
    std::vector<nlohmann::json> m_matchers;
};

TEST_F(ProblemMatcher, IsTheSameForEveryTask) { EXPECT_EQ(matchers().front(), matchers().back()); }

TEST_F(ProblemMatcher, FindsABreachOfTheContract) {
    EXPECT_EQ(problemsIn(runMacro("ONE ECHO a\nONE LEAVELOCKOPEN\n", {"--strict", "--batch"}).err),
              "m.macro|2|error|VexaUtilLockStart has no matching VexaUtilLockFinish in the command|unbalanced-lock\n");
}

TEST_F(ProblemMatcher, FindsACommandThatFailed) {
    EXPECT_EQ(problemsIn(runMacro("ONE FAIL no such zone: 7 [a b]\n").err), "m.macro|1||no such zone: 7 [a b]|\n");
}

TEST_F(ProblemMatcher, FindsACommandThatEndedTheProcess) {
    EXPECT_EQ(problemsIn(runMacro("ONE KILL now\n").err),
              "m.macro|1|error|\"ONE KILL now\" ended the process: SIGKILL (Killed); it made no host call|\n");
}

TEST_F(ProblemMatcher, FindsALineThatIsNoCommand) {
    EXPECT_EQ(problemsIn(runMacro("# a\nONE\n").err), "m.macro|2||expected a command after 'ONE'|\n");
}

TEST_F(ProblemMatcher, FindsABreachInAMacroTest) {
    write("t.macro", "ONE LEAVELOCKOPEN\n");
    const ProgramResult result = runProgram(runner({"test", "t.macro", "--addon", ADDON_ONE, "--strict"}));
    EXPECT_EQ(problemsIn(result.out),
              "t.macro|1|error|VexaUtilLockStart has no matching VexaUtilLockFinish in the command|unbalanced-lock\n");
}

TEST_F(ProblemMatcher, IgnoresADialog) { EXPECT_EQ(problemsIn(runMacro("ONE DIALOG hello\n").err), ""); }

}  // namespace
}  // namespace vexa::e2e
