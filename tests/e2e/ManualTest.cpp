#include <sstream>

#include "TerminalTest.h"

namespace vexa::e2e {
namespace {

const std::vector<std::string> kCommands = {"new", "run",    "repl",    "test", "check", "attach",
                                            "lsp", "report", "explain", "list", "style"};

class Manual : public TerminalTest {
protected:
    std::string manual(const std::string& form) const { return runProgram(runner({"manual", form})).out; }

    // The words that bash offers for the last one of a command line.
    std::string completion(const std::string& words) const {
        write("complete.bash", manual("bash"));
        const std::string script = "compopt() { :; }; . ./complete.bash; COMP_WORDS=(" + words +
                                   "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _vexa_standin; echo \"${COMPREPLY[*]}\"";
        const ProgramResult result = runProgram({{"bash", "-c", script}, folder(), "", false});
        EXPECT_EQ(result.err, "") << words;
        return result.out;
    }

    // The words that fish offers for the end of a command line.
    std::string fishCompletion(const std::string& line) const {
        const std::string script = "source complete.fish; complete -C '" + line + "' | string split -f1 \\t | sort";
        const ProgramResult result = runProgram({{"fish", "--no-config", "-c", script}, folder(), "", false});
        EXPECT_EQ(result.err, "") << line;
        return result.out;
    }

    // What is in \p text from \p start to \p end.
    static std::string partOf(const std::string& text, const std::string& start, const std::string& end) {
        const std::size_t begin = text.find(start);
        EXPECT_NE(begin, std::string::npos) << start;
        return begin == std::string::npos ? "" : text.substr(begin, text.find(end, begin + start.size()) - begin);
    }

    bool hasProgram(const std::string& name) const {
        return runProgram({{"sh", "-c", "command -v " + name}, folder(), "", false}).status == 0;
    }

    // The options that the help of a command shows: "--strict".
    std::vector<std::string> optionsOf(const std::string& command) const {
        std::istringstream help(runProgram(runner({command, "--help"})).out);
        std::vector<std::string> options;
        for (std::string line; std::getline(help, line);) {
            const std::size_t begin = line.find("--");
            const bool isOption = line.rfind("  -", 0) == 0 && begin != std::string::npos;
            if (isOption) options.push_back(line.substr(begin, line.find(' ', begin) - begin));
        }
        return options;
    }
};

TEST_F(Manual, IsNotInTheHelp) {
    EXPECT_EQ(runProgram(runner({"--help"})).out.find("  manual"), std::string::npos);
    EXPECT_EQ(runProgram(runner({"manual", "html"})).status, 2);
}

TEST_F(Manual, HasEveryOptionOfEveryCommand) {
    const std::string page = manual("man");
    for (const std::string& command : kCommands) {
        const std::vector<std::string> options = optionsOf(command);
        EXPECT_FALSE(options.empty());
        const std::size_t begin = page.find("\n.SS " + command + '\n');
        ASSERT_NE(begin, std::string::npos) << command;
        const std::string section = page.substr(begin, page.find("\n.S", begin + 1) - begin);
        for (const std::string& option : options) {
            std::string escaped;
            for (const char c : option) escaped += c == '-' ? "\\-" : std::string(1, c);
            EXPECT_NE(section.find("\\fB" + escaped + "\\fR"), std::string::npos) << command << ' ' << option;
        }
    }
}

TEST_F(Manual, IsSetWithoutAWarning) {
    write("page.1", manual("man"));
    const ProgramResult result =
        runProgram({{"sh", "-c", "command -v groff >/dev/null || exit 77; exec groff -man -Tascii -P-cbou -ww page.1"},
                    folder(),
                    "",
                    false});
    if (result.status == 77) GTEST_SKIP() << "there is no groff";
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_NE(result.out.find("vexa-standin run MACROFILE ... [option ...]"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("{\"FIELDMAP\": {\"MESH\": {\"LINETHICKNESS\": 0.4, \"COLOR\": 3}},"), std::string::npos);
}

TEST_F(Manual, CompletesOptionsOfEveryCommand) {
    for (const std::string& command : kCommands) {
        std::istringstream offered(completion("vexa-standin " + command + " --"));
        std::vector<std::string> words;
        for (std::string word; offered >> word;) words.push_back(word);
        EXPECT_EQ(words, optionsOf(command)) << command;
    }
}

TEST_F(Manual, CompletesWordByWord) {
    struct Case {
        const char* why;
        const char* words;
        const char* offered;
    };
    const Case cases[] = {
        {"commands", "vexa-standin re", "results repl report\n"},
        {"all commands", "vexa-standin ''",
         "new run results repl test check lint lsp debug attach report coverage diff describe docs random explain list "
         "style probe "
         "compare-hosts "
         "schema\n"},
        {"options of the program", "vexa-standin --v", "--version\n"},
        {"options behind a file", "vexa-standin run m.macro --rec", "--record\n"},
        {"rules", "vexa-standin run --suppress unbalanced-l", "unbalanced-lock\n"},
        {"a rule to explain", "vexa-standin explain leaked-m", "leaked-mutex\n"},
        {"tests of the check", "vexa-standin check --only load", "load load-unload\n"},
        {"files are left to bash", "vexa-standin run --addon ''", "\n"},
        {"numbers are nobody's", "vexa-standin run --jobs ''", "\n"},
        {"an option's value is no command", "vexa-standin list --addon run --addon x --", "--help --addon --color\n"},
    };
    for (const Case& c : cases) EXPECT_EQ(completion(c.words), c.offered) << c.why;
}

TEST_F(Manual, CompletesInAShell) {
    write("complete.bash", manual("bash"));
    write("sweep.macro", "");
    PtyProgram shell({{"bash", "--norc", "--noprofile", "-i"}, folder(), "", false}, kColumns,
                     {"TERM=dumb", "PS1=ready> ", "HISTFILE=", "INPUTRC=/dev/null"});
    ASSERT_TRUE(shell.waitFor("ready> "));
    shell.type("bind 'set enable-bracketed-paste off'; . ./complete.bash; vexa-standin() { echo \"got: $*\"; }\n");
    ASSERT_TRUE(shell.waitFor("ready> ")) << shell.output();
    shell.type("vexa-standin ru\tswe\t--rec\tr.macro --suppress leaked-mu\t\n");
    EXPECT_TRUE(shell.waitFor("got: run sweep.macro --record r.macro --suppress leaked-mutex")) << shell.output();
    shell.type("exit\n");
    EXPECT_EQ(shell.finish(), 0) << shell.output();
}

TEST_F(Manual, HasEveryOptionInTheCompletionsOfZshAndFish) {
    const std::string zsh = manual("zsh");
    const std::string fish = manual("fish");
    for (const std::string& command : kCommands) {
        const std::string zshPart = partOf(zsh, "\n                " + command + ")\n", " ;;\n");
        const std::string fishPart =
            partOf(fish, "\n\ncomplete -c vexa-standin -n '__vexa_standin_is " + command + "'", "\n\n");
        for (const std::string& option : optionsOf(command)) {
            const bool isSwitch = zshPart.find(option + '[') != std::string::npos;
            EXPECT_TRUE(isSwitch || zshPart.find(option + "=[") != std::string::npos) << command << ' ' << option;
            EXPECT_NE(fishPart.find(" -l " + option.substr(2) + ' '), std::string::npos) << command << ' ' << option;
        }
    }
}

TEST_F(Manual, CompletesTheSameInFish) {
    if (!hasProgram("fish")) GTEST_SKIP() << "there is no fish";
    write("complete.fish", manual("fish"));
    write("sweep.macro", "");
    struct Case {
        const char* why;
        const char* line;
        const char* offered;
    };
    const Case cases[] = {
        {"commands", "vexa-standin re", "repl\nreport\nresults\n"},
        {"all commands", "vexa-standin ",
         "attach\ncheck\ncompare-"
         "hosts\ncoverage\ndebug\ndescribe\ndiff\ndocs\nexplain\nlint\nlist\nlsp\nnew\nprobe\nrandom\nrepl\nreport\n"
         "results\nrun\nschema"
         "\nstyl"
         "e\ntest"
         "\n"},
        {"options of the program", "vexa-standin --v", "--version\n"},
        {"options after a file", "vexa-standin run m.macro --rec", "--record\n"},
        {"rules", "vexa-standin run --suppress unbalanced-l", "unbalanced-lock\n"},
        {"a rule to explain", "vexa-standin explain leaked-m", "leaked-mutex\n"},
        {"tests of the check", "vexa-standin check --only load", "load\nload-unload\n"},
        {"files", "vexa-standin run sw", "sweep.macro\n"},
        {"files of an option", "vexa-standin run --record sw", "sweep.macro\n"},
        {"no files where none go", "vexa-standin style sw", ""},
        {"numbers are nobody's", "vexa-standin run --jobs ", ""},
        {"an option's value is no command", "vexa-standin list --addon run --addon x --", "--addon\n--color\n--help\n"},
    };
    for (const Case& c : cases) EXPECT_EQ(fishCompletion(c.line), c.offered) << c.why;
}

TEST_F(Manual, CompletesInAZsh) {
    if (!hasProgram("zsh")) GTEST_SKIP() << "there is no zsh";
    write("_vexa-standin", manual("zsh"));
    write("sweep.macro", "");
    PtyProgram shell({{"zsh", "-f", "-i"}, folder(), "", false}, kColumns, {"TERM=dumb", "PS1=ready> "});
    ASSERT_TRUE(shell.waitFor("ready> "));
    // The first completion loads the script, as it does for a user.
    shell.type("unset zle_bracketed_paste; fpath=($PWD $fpath); autoload -Uz compinit; compinit -D -u\n");
    ASSERT_TRUE(shell.waitFor("ready> ")) << shell.output();
    shell.type("vexa-standin() { print -r got: $*; }; print loaded\n");
    ASSERT_TRUE(shell.waitFor("\nloaded")) << shell.output();
    ASSERT_TRUE(shell.waitFor("ready> ")) << shell.output();
    struct Case {
        const char* typed;
        const char* completed;
    };
    const Case cases[] = {
        {"vexa-standin ru\tswe\t--keep\t--suppress leaked-mu\t--rec\tr.macro\n",
         "got: run sweep.macro --keep-going --suppress leaked-mutex --record=r.macro"},
        {"vexa-standin explain leaked-m\t\n", "got: explain leaked-mutex"},
        {"vexa-standin list --addon run --addon x --col\tnev\t\n", "got: list --addon run --addon x --color=never"},
        {"vexa-standin --vers\t\n", "got: --version"},
        {"vexa-standin style sw\t\n", "got: style sw"},
    };
    for (const Case& c : cases) {
        shell.type(c.typed);
        EXPECT_TRUE(shell.waitFor(c.completed)) << shell.output();
    }
    shell.type("exit\n");
    EXPECT_EQ(shell.finish(), 0) << shell.output();
}

}  // namespace
}  // namespace vexa::e2e
