// Tests each command of the runner on a system that fails: each read, write, open, close, fork, mmap and rename fails
// once, one in each run. VEXA_LOAD=long tries all of them, otherwise some that are spread over the run.
//
// After a failure, the command either does all that it does without it, or exits with status 2 and names the reason. It
// does not crash or hang. No output file is half written, and no other file and no process is left.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <ostream>
#include <regex>

#include "../RunnerTest.h"
#include "FaultySystem.h"

namespace vexa::e2e {
namespace {

namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>;  // the texts of files by their names

constexpr std::chrono::seconds kPatience(120);
constexpr std::size_t kFewPlaces = 12;
constexpr int kCannotReadOrWrite = 2;

struct FaultyCommand {
    const char* name;
    std::vector<std::string> arguments;  // outputs are called out.*
    const char* input = "";
    std::vector<std::string> growing = {};  // outputs that are written line by line while the command runs
    const char* extra = "none";             // the start of the names of other files that a failure may leave
    int failed = 2;                         // the status after a failure
    bool tellsOnly = false;                 // whether it may succeed with incomplete outputs and a message
};

void PrintTo(const FaultyCommand& command, std::ostream* out) { *out << command.name; }

const FaultyCommand kCommands[] = {
    {"New", {"new", "wake"}},
    {"Run",
     {"run", "m.macro", "--addon", ADDON_ONE, "--style", "style.json", "--record", "out.record", "--journal",
      "out.journal", "--sarif", "out.sarif", "--coverage", "out.coverage"}},
    {"RunTraced",
     {"run", "m.macro", "--addon", ADDON_ONE, "--trace", "out.trace", "--trace-text", "out.calls", "--json",
      "out.jsonl"},
     "",
     {"out.trace", "out.calls", "out.jsonl"}},
    {"RunMany",
     {"run", "m.macro", "two.macro", "--addon", ADDON_ONE, "--json", "out.jsonl", "--coverage", "out.coverage"},
     "",
     {"out.jsonl"}},
    {"Results", {"results", "old.jsonl", "--list", "list.txt", "--junit", "out.xml", "--json", "out.jsonl"}},
    {"Repl", {"repl", "--addon", ADDON_ONE, "--record", "out.record"}, "ONE SAY hello\nONE SAY again\nquit\n"},
    {"Test", {"test", "m.macro", "two.macro", "--addon", ADDON_ONE, "--junit", "out.xml"}},
    {"TestAccept", {"test", "two.macro", "--addon", ADDON_ONE, "--accept"}},
    {"Check",
     {"check", ADDON_ONE, "--macro", "two.macro", "--only", "load", "--only", "commands-in-order", "--seed", "1",
      "--json", "out.json", "--junit", "out.xml", "--coverage", "out.coverage"},
     "",
     {},
     "vexa-standin-check-",
     1},  // a test of the add-on failed, for the reason that it prints
    {"Lint", {"lint", "s.macro", "--describe", "s.commands.json", "--json", "out.jsonl", "--sarif", "out.sarif"}},
    {"Report", {"report", "old.trace", "-o", "out.html"}},
    {"Coverage", {"coverage", "old.trace", "--json", "out.coverage", "-o", "out.html"}},
    {"Diff", {"diff", "old.trace", "old.trace"}},
    {"Docs", {"docs", "s.commands.json", "--html"}},
    {"Explain", {"explain", "--markdown"}},
    {"List", {"list", ADDON_ONE}},
    {"Style", {"style", "TITLE", "TEXT", "--style", "style.json"}},
    // The facts about the end of the host are written when the host has no status any more. If the system does not open
    // the temporary folder for its removal, the folder stays.
    {"Probe", {"probe", "-o", "out.facts"}, "", {}, "tmp/vexa-standin-probe", 2, true},
    {"CompareHosts", {"compare-hosts", "old.facts", "old.facts"}},
    {"Schema", {"schema"}},
    {"Manual", {"manual", "man"}},
};

bool isLong() {
    const char* const load = std::getenv("VEXA_LOAD");
    return load != nullptr && std::strcmp(load, "long") == 0;
}

bool has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

bool isOutput(const std::string& name) { return name.rfind("out.", 0) == 0; }

// Times and addresses differ from run to run.
std::string withoutNumbers(const std::string& text) {
    static const std::regex number("(0x[0-9a-f]+|[0-9]+(\\.[0-9]+)?(e-?[0-9]+)?)");
    return std::regex_replace(text, number, "#");
}

// Whether an output is complete: it ends as the other does. The formats of the outputs end with a line that closes
// them, except for a list of mistakes, which may be empty.
bool isComplete(const std::string& name, const std::string& text, const std::string& other) {
    const auto lastLine = [](const std::string& lines) {
        const std::size_t end = lines.find_last_not_of('\n');
        return end == std::string::npos ? "" : lines.substr(lines.rfind('\n', end) + 1);
    };
    if (text.empty()) return name == "out.jsonl";
    return text.back() == '\n' && lastLine(text) == lastLine(other);
}

// The words for an error, also those of the loader and of the runner. A thread without memory for its stack is refused
// as one thread too many.
bool namesReason(const std::string& err, Call_e call) {
    static const std::map<Call_e, std::vector<std::string>> others = {
        {Call_e::Read, {"input/output error", "cannot read file data"}},
        {Call_e::Write, {"the standard output could not be written"}},
        {Call_e::Open, {"too many open files"}},
        {Call_e::Start, {"resource temporarily unavailable"}},
        {Call_e::Map,
         {"Resource temporarily unavailable", "out of memory", "failed to map segment", "cannot allocate memory",
          "cannot create shared object"}},
    };
    const auto found = others.find(call);
    const bool isOther = found != others.end() && std::any_of(found->second.begin(), found->second.end(),
                                                              [&](const auto& words) { return has(err, words); });
    return isOther || has(err, reasonOf(call));
}

std::vector<FailingCall> placesOf(const FaultyRun& run) {
    std::vector<FailingCall> places;
    for (const auto& [kind, count] : run.calls) {
        for (int number = 1; number <= count; ++number) places.push_back({kind.first, kind.second, number});
    }
    if (isLong() || places.size() <= kFewPlaces) return places;
    std::vector<FailingCall> few;
    for (std::size_t i = 0; i != kFewPlaces; ++i) few.push_back(places[i * places.size() / kFewPlaces]);
    return few;
}

// While it lives, programs write their temporary files to a folder.
class TemporaryFiles {
public:
    explicit TemporaryFiles(const fs::path& folder) { setenv("TMPDIR", folder.c_str(), 1); }
    TemporaryFiles(const TemporaryFiles&) = delete;
    TemporaryFiles& operator=(const TemporaryFiles&) = delete;
    ~TemporaryFiles() { unsetenv("TMPDIR"); }
};

class SystemCallFault : public RunnerTest, public testing::WithParamInterface<FaultyCommand> {
protected:
    // A run, and the files after it.
    struct Outcome {
        FaultyRun run;
        Files files;
    };

    void SetUp() override {
        write("m.macro", "ONE SAY hello\nONE JOURNAL b\n");
        write("m.expected", "> ONE SAY hello\n  hello\n+ ONE SAY hello\n> ONE JOURNAL b\n");
        write("two.macro", "ONE SAY two\n");
        write("list.txt", "m.macro\n");
        write("style.json", R"({"TITLE": {"TEXT": "Wake"}})");
        write("s.macro", "STATS MEAN TITLE = 'a'\nSTATS MEEN\n");
        write("s.commands.json", R"({"addon": "STATS", "commands": [{"name": "MEAN", "kind": "processor",
            "purpose": "Prints the mean.", "options": [{"name": "TITLE", "type": "String", "help": "a title"}]}]})");
        runProgram(runner({"run", "m.macro", "--addon", ADDON_ONE, "--trace", "old.trace", "--json", "old.jsonl"}));
        runProgram(runner({"probe", "-o", "old.facts"}));
        m_inputs = files();
        m_program = runner(GetParam().arguments);
        m_program.input = GetParam().input;
        try {
            m_old = run(std::nullopt).files;
        } catch (const std::system_error& error) {
            if (error.code() != std::errc::function_not_supported) throw;
            GTEST_SKIP() << "the system does not let a process answer the system calls of others";
        }
        m_untouched = run(std::nullopt);
    }

    const Outcome& untouched() const { return m_untouched; }

    Outcome run(const std::optional<FailingCall>& place) const {
        reset();
        const TemporaryFiles temporary(folder() / "tmp");
        FaultyRun run = runFaulty(m_program, place, kPatience);
        return {std::move(run), files()};
    }

    // Returns the mistakes in a run in which a call failed, one in each line.
    std::string mistakesIn(const Outcome& outcome, Call_e call) const {
        const ProgramResult& result = outcome.run.result;
        const ProgramResult& expected = m_untouched.run.result;
        const bool hasSucceeded = result.status == expected.status;
        std::string mistakes;
        const auto require = [&](bool isSo, const std::string& mistake) {
            if (!isSo) mistakes += "    " + mistake + '\n';
        };
        require(!outcome.run.hasHung, "it hung");
        require(!outcome.run.hasLeftProcesses, "it left a process");
        require(!has(result.err, "unexpected error"), "it did not expect the error");
        if (hasSucceeded) {
            require(withoutNumbers(result.out) == withoutNumbers(expected.out), "it printed something else");
        } else {
            require(result.status == kCannotReadOrWrite || result.status == GetParam().failed, "the status is wrong");
            require(outcome.run.isMessageLost || namesReason(result.err + result.out, call),
                    "the message has no reason");
        }
        const bool isTold = GetParam().tellsOnly && namesReason(result.err, call);
        return mistakes + mistakesIn(outcome.files, hasSucceeded && !isTold);
    }

private:
    std::string mistakesIn(const Files& files, bool hasSucceeded) const {
        std::string mistakes;
        for (const auto& [name, text] : files) {
            const auto expected = m_untouched.files.find(name);
            if (expected == m_untouched.files.end()) {
                if (name.rfind(GetParam().extra, 0) == 0) continue;
                mistakes += "    it left the file " + name + '\n';
            } else if (withoutNumbers(text) != withoutNumbers(expected->second) &&
                       (hasSucceeded || !mayDiffer(name, text))) {
                mistakes += "    " + name + " is neither the old file nor the new one:\n" + text.substr(0, 1000) + '\n';
            }
        }
        for (const auto& [name, text] : m_untouched.files) {
            if (hasSucceeded && files.count(name) == 0) mistakes += "    " + name + " is missing\n";
        }
        return mistakes;
    }

    // Whether an output may have this text after a failure: it is the old one, or another one that is complete.
    bool mayDiffer(const std::string& name, const std::string& text) const {
        const auto& growing = GetParam().growing;
        const bool isGrowing = std::count(growing.begin(), growing.end(), name) != 0;
        return isOutput(name) &&
               (text == oldText(name) || isGrowing || isComplete(name, text, m_untouched.files.at(name)));
    }

    // Coverage files get more with each run, so the old one must be one.
    std::string oldText(const std::string& name) const { return name == "out.coverage" ? m_old.at(name) : "old\n"; }

    Files files() const {
        Files files;
        for (const auto& entry : fs::recursive_directory_iterator(folder())) {
            const std::string name = fs::relative(entry.path(), folder());
            if (entry.is_regular_file()) files[name] = read(name);
        }
        return files;
    }

    // Leaves the inputs, and an old text in each output.
    void reset() const {
        for (const auto& entry : fs::directory_iterator(folder())) fs::remove_all(entry.path());
        fs::create_directory(folder() / "tmp");
        for (const auto& [name, text] : m_inputs) write(name, text);
        for (const auto& [name, text] : m_old) {
            if (isOutput(name)) write(name, oldText(name));
        }
    }

    Program m_program;
    Files m_inputs;
    Files m_old;
    Outcome m_untouched;
};

TEST_P(SystemCallFault, IsReportedAndLeavesNothingBehind) {
    const FaultyRun& untouched = this->untouched().run;
    ASSERT_LE(untouched.result.status, 1) << untouched.result.err;
    int failures = 0;
    for (const FailingCall& place : placesOf(untouched)) {
        const Outcome outcome = run(place);
        if (outcome.run.failed.empty()) continue;
        ++failures;
        const std::string mistakes = mistakesIn(outcome, place.call);
        EXPECT_EQ(mistakes, "") << "in process " << place.process << ": " << outcome.run.failed << " (number "
                                << place.number << ")\nstatus " << outcome.run.result.status << '\n'
                                << outcome.run.result.err;
    }
    std::printf("%s: %d calls failed, one in each run\n", GetParam().name, failures);
    EXPECT_GT(failures, 0);
}

INSTANTIATE_TEST_SUITE_P(Each, SystemCallFault, testing::ValuesIn(kCommands),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace vexa::e2e
