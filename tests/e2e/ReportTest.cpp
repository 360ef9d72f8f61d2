#include <csignal>
#include <sstream>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

namespace fs = std::filesystem;

class Report : public RunnerTest {
protected:
    ProgramResult report(const std::string& trace) const {
        return runProgram(runner({"report", trace, "-o", "report.html"}));
    }
    void traceMacro(const std::string& macro) const {
        runMacro(macro, {"--keep-going", "--record", "r.macro", "--trace", "t.json"});
    }
};

TEST_F(Report, IsAPageOfTheRun) {
    traceMacro("ONE SAY hello\n");
    const ProgramResult result = report("t.json");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_EQ(read("report.html").substr(0, 15), "<!DOCTYPE html>");
    EXPECT_NE(read("report.html").find("SAY hello"), std::string::npos);
}

TEST_F(Report, IsWrittenWhateverBecameOfTheRun) {
    traceMacro("ONE FAIL a\n");
    EXPECT_EQ(report("t.json").status, 0);
    traceMacro("ONE SAY a\nONE KILL\n");
    EXPECT_EQ(report("t.json").status, 0);
    EXPECT_NE(read("report.html").find("ONE KILL"), std::string::npos);
}

TEST_F(Report, OfWhatIsNoTraceIsRefused) {
    write("text", "ONE SAY a\n");
    fs::create_directory(folder() / "folder");
    struct Case {
        const char* file;
        const char* why;
    };
    const Case cases[] = {
        {"text", "this is not a trace of 'vexa-standin run --trace'"},
        {"gone", "cannot be read: No such file or directory"},
        {"folder", "cannot be read: Is a directory"},
    };
    for (const Case& c : cases) {
        const ProgramResult result = report(c.file);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, std::string(c.file) + ": " + c.why + '\n');
        EXPECT_FALSE(fs::exists(folder() / "report.html"));
    }
}

TEST_F(Report, ThatCannotBeWrittenIsAnError) {
    traceMacro("ONE SAY a\n");
    const ProgramResult result = runProgram(runner({"report", "t.json", "-o", "gone/r.html"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "gone/r.html: cannot be written: its folder does not exist\n");
}

TEST_F(Report, NeedsTheNameOfThePage) { EXPECT_EQ(runProgram(runner({"report", "t.json"})).status, 2); }

// ---- In a browser

// What the timeline shows.
struct View {
    long from = 0;
    long to = 0;
    std::string selection;
    long width() const { return to - from; }
};

// Writes into the page, before the script that is left out of it, what the timeline shows. Before a page is printed it
// is drawn at once.
constexpr const char* kLook = R"(
    const canvas = document.getElementById('canvas');
    const seen = document.createElement('pre');
    document.body.prepend(seen);
    const look = () => {
        window.dispatchEvent(new Event('beforeprint'));
        seen.append(`timeline shows ${canvas.dataset.from} ${canvas.dataset.to} ${document.getElementById('selection').textContent}\n`);
    };
    const click = (selector) => {
        document.querySelector(selector).click();
        look();
    };
    const type = (id, text) => {
        const field = document.getElementById(id);
        field.value = text;
        field.dispatchEvent(new Event('input'));
        look();
    };
    const press = (key) => {
        canvas.dispatchEvent(new KeyboardEvent('keydown', {key}));
        look();
    };
    look();
)";

std::vector<View> viewsIn(const std::string& page) {
    const std::string kShows = "timeline shows ";
    std::vector<View> views;
    std::istringstream lines(page);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t begin = line.find(kShows);
        if (begin == std::string::npos) continue;
        std::istringstream words(line.substr(begin + kShows.size()));
        View& view = views.emplace_back();
        words >> view.from >> view.to;
        std::getline(words >> std::ws, view.selection);
    }
    return views;
}

class ReportInBrowser : public Report {
protected:
    void SetUp() override {
        if (runProgram({{"sh", "-c", "command -v chromium"}, folder(), "", false}).status != 0) {
            GTEST_SKIP() << "chromium is not installed";
        }
    }

    // The page's elements after its script ran, without the script.
    std::string elements() const {
        const std::string page = "file://" + (folder() / "report.html").string();
        const ProgramResult result =
            runProgram({{"timeout", "120", "chromium", "--headless", "--no-sandbox", "--disable-gpu",
                         "--user-data-dir=" + (folder() / "profile").string(), "--dump-dom", page},
                        folder(),
                        "",
                        false});
        EXPECT_EQ(result.status, 0) << result.err;
        return result.out.substr(0, result.out.find("<script"));
    }

    std::string elementsAfter(const std::string& macro) const {
        traceMacro(macro);
        EXPECT_EQ(report("t.json").status, 0);
        return elements();
    }

    // What the timeline shows at first, and after each of \p keys.
    std::vector<View> viewsAfter(const std::string& macro, const std::vector<std::string>& keys) const {
        std::string script;
        for (const std::string& key : keys) script += "press('" + key + "');";
        return viewsIn(elementsAfterScript(macro, script));
    }

    // The page's elements after \p script used it.
    std::string elementsAfterScript(const std::string& macro, const std::string& actions) const {
        traceMacro(macro);
        EXPECT_EQ(report("t.json").status, 0);
        const std::string script = kLook + actions;
        std::string page = read("report.html");
        page.insert(page.rfind("</body>"), "<script>" + script + "</script>");
        write("report.html", page);
        return elements();
    }
};

testing::AssertionResult has(const std::string& page, const std::string& text) {
    if (page.find(text) != std::string::npos) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "no " << text << " in:\n" << page;
}

// The value of an attribute of the timeline.
std::string timelineValue(const std::string& page, const std::string& name) {
    const std::size_t begin = page.find(name + "=\"", page.find("<canvas")) + name.size() + 2;
    return page.substr(begin, page.find('"', begin) - begin);
}

const std::string kMacro = "ONE SAY hello\nONE LEAVELOCKOPEN\nONE DIALOG watch <b>out</b>\nONE FAIL no way\n";

TEST_F(ReportInBrowser, ShowsTheRun) {
    const std::string page = elementsAfter(kMacro);
    EXPECT_TRUE(has(page, "<h1 id=\"title\">Run of m.macro</h1>"));
    EXPECT_TRUE(has(page, "Failed: a command failed, exit status 1, with 1 finding"));
    EXPECT_TRUE(has(page, "ONE LEAVELOCKOPEN"));
    EXPECT_TRUE(has(page, "no way"));
    EXPECT_TRUE(has(page, ">watch &lt;b&gt;out&lt;/b&gt;</pre>")) << "the dialog";
    EXPECT_TRUE(has(page, ">SAY hello</pre>")) << "the recorded command";
    EXPECT_TRUE(has(page, "<span class=\"warn\">never called</span>"));
    EXPECT_TRUE(has(page, "<code>unbalanced-lock</code> 1 finding</summary>"));
}

TEST_F(ReportInBrowser, ShowsAFindingWithBothPlacesAndItsHint) {
    const std::string page = elementsAfter(kMacro);
    EXPECT_TRUE(has(page, "VexaUtilLockStart has no matching VexaUtilLockFinish in the command [unbalanced-lock]"));
    EXPECT_TRUE(
        has(page, "<dt>First</dt><dd>call 8, VexaUtilLockStart, in \"ONE LEAVELOCKOPEN\", m.macro:2, thread 1</dd>"));
    EXPECT_TRUE(has(page, "<dt>Seen</dt><dd>the end of \"ONE LEAVELOCKOPEN\", m.macro:2, thread 1</dd>"));
    EXPECT_TRUE(has(page, "<dt>Hint</dt><dd>Use an AddOnIdLock"));
}

TEST_F(ReportInBrowser, DrawsTheTimeline) {
    const std::string page = elementsAfter(kMacro);
    EXPECT_GT(std::stoi(timelineValue(page, "data-drawn")), 5);
    EXPECT_EQ(timelineValue(page, "data-from"), "0");
    EXPECT_TRUE(has(page, "Timeline of 6 commands and 11 host calls and scopes on 2 tracks."));
}

TEST_F(ReportInBrowser, ZoomsAndMovesByKeys) {
    const std::vector<View> views =
        viewsAfter(kMacro, {"+", "ArrowRight", "ArrowLeft", "-", "ArrowUp", "ArrowDown", "0"});
    ASSERT_EQ(views.size(), 8U);
    const long whole = views[0].to;
    EXPECT_EQ(views[0].from, 0);
    EXPECT_NEAR(static_cast<double>(views[1].width()), static_cast<double>(whole) / 2, 2);
    EXPECT_GT(views[2].from, views[1].from);
    EXPECT_NEAR(static_cast<double>(views[2].width()), static_cast<double>(views[1].width()), 1);
    EXPECT_NEAR(static_cast<double>(views[3].from), static_cast<double>(views[1].from), 2);
    EXPECT_EQ(views[4].width(), whole);
    EXPECT_LT(views[5].width(), whole);
    EXPECT_EQ(views[6].width(), whole);
    EXPECT_EQ(views[7].width(), whole);
}

TEST_F(ReportInBrowser, KeepsTheTimelineWithinTheRun) {
    const std::vector<View> views = viewsAfter(
        kMacro, {"-", "ArrowLeft", "ArrowRight", "+", "ArrowLeft", "ArrowLeft", "ArrowLeft", "ArrowLeft", "ArrowLeft"});
    ASSERT_EQ(views.size(), 10U);
    for (const View& view : views) {
        EXPECT_GE(view.from, 0);
        EXPECT_LE(view.to, views[0].to);
    }
    EXPECT_EQ(views.back().from, 0);
}

TEST_F(ReportInBrowser, SelectsByKeysWhatComesNextAndBefore) {
    const std::vector<View> views = viewsAfter(kMacro, {"n", "n", "p"});
    ASSERT_EQ(views.size(), 4U);
    EXPECT_EQ(views[0].selection, "Nothing is selected.");
    EXPECT_EQ(views[1].selection.find("load "), 0U);
    EXPECT_EQ(views[2].selection.find("call 1: VexaUtilArgListAllocArgumentsnoneResultarglist#1Threadthread 1Start"),
              0U);
    EXPECT_EQ(views[3].selection, views[1].selection);
}

TEST_F(ReportInBrowser, ShowsACrashAsAFailedCommandAndTheFirstFinding) {
    const std::string page = elementsAfter("ONE SAY a\nONE KILL\n");
    EXPECT_TRUE(has(page, "Failed: the trace ends before the run"));
    EXPECT_TRUE(has(page, "<dt>Commands</dt><dd>2, 1 failed</dd>"));
    EXPECT_TRUE(
        has(page, "<h4>error: \"ONE KILL\" ended the process: SIGKILL (Killed); it made no host call [crash]</h4>"));
    EXPECT_TRUE(has(page, "<span class=\"bad\">did not end</span>"));
}

TEST_F(ReportInBrowser, SelectsAFindingAndZoomsToIt) {
    std::vector<View> views;
    // On a busy machine, the call of the finding may take as long as all others, so that there is nothing to zoom.
    for (int i = 0; i != 5 && (views.empty() || views[1].width() == views[0].width()); ++i) {
        views = viewsIn(elementsAfterScript(kMacro, "click('[data-finding=\"0\"]');"));
        ASSERT_EQ(views.size(), 2U);
    }
    EXPECT_LT(views[1].width(), views[0].width());
    EXPECT_EQ(views[1].selection.find("error: VexaUtilLockStart has no matching"), 0U) << views[1].selection;
}

TEST_F(ReportInBrowser, ListsOnlyFailedCommandsOnRequest) {
    const std::string all = elementsAfterScript(kMacro, "");
    const std::string failed = elementsAfterScript(kMacro, "click('#failed-only');");
    EXPECT_TRUE(has(all, "ONE SAY hello: show in the timeline"));
    EXPECT_EQ(failed.find("ONE SAY hello: show in the timeline"), std::string::npos);
    EXPECT_TRUE(has(failed, "ONE FAIL no way: show in the timeline"));
    EXPECT_TRUE(has(failed, ">1 of 6</p>"));
}

TEST_F(ReportInBrowser, FindsCallsInTheTimeline) {
    const std::string page = elementsAfterScript(kMacro, "type('search', 'lockstart'); press('n');");
    EXPECT_TRUE(has(page, "aria-live=\"polite\">1 found</span>"));
    EXPECT_EQ(viewsIn(page).back().selection.find("call 8: VexaUtilLockStart"), 0U);
}

TEST_F(ReportInBrowser, ShowsCommandsAndCallsInTheFlameView) {
    const std::string page = elementsAfterScript(kMacro, "type('flame-search', 'dialogerr');");
    EXPECT_TRUE(has(page, "aria-label=\"ONE LEAVELOCKOPEN: "));
    EXPECT_TRUE(has(page, "class=\"box found\""));
}

TEST_F(ReportInBrowser, ComparesTwoRuns) {
    runMacro("ONE SAY a\n", {"--record", "r.macro", "--trace", "old.json"});
    runMacro("ONE SAY a\nONE SAY a\nONE LEAVELOCKOPEN\n", {"--record", "r.macro", "--trace", "t.json"});
    EXPECT_EQ(runProgram(runner({"report", "t.json", "--compare", "old.json", "-o", "report.html"})).status, 0);
    const std::string page = elements();
    EXPECT_TRUE(has(page, "<dt>Findings</dt><dd>unbalanced-lock: 0 before, 1 now</dd>"));
    EXPECT_TRUE(has(page, "<span title=\"ONE LEAVELOCKOPEN\">ONE LEAVELOCKOPEN</span>"));
    EXPECT_TRUE(has(page, "absent"));
}

TEST_F(ReportInBrowser, TellsOfARunThatWentWell) {
    const std::string page = elementsAfter("ONE ECHO a\n");
    EXPECT_TRUE(has(page, "<p id=\"verdict\" class=\"good\">Passed</p>"));
    EXPECT_TRUE(has(page, "No findings."));
    EXPECT_TRUE(has(page, "No dialog was shown."));
    EXPECT_TRUE(has(page, "No command was recorded."));
}

}  // namespace
}  // namespace vexa::e2e
