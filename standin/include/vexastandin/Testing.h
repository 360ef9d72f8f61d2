#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "vexastandin/Export.h"
#include "vexastandin/Finding.h"
#include "vexastandin/Host.h"

namespace vexa::standin {

/// A command that an add-on under test ran, and what came of it.
struct TestedCommand {
    std::string command;                ///< the add-on's id, a blank, and the command's text
    bool accepted = false;              ///< whether the add-on reported success
    std::string error;                  ///< the add-on's message, or what escaped from it; empty on success
    std::vector<std::string> recorded;  ///< the texts of the commands recorded meanwhile, ready to be run again
    std::vector<std::string> dialogs;   ///< the texts of the error dialogs that came up meanwhile
    /// The breaches of rules that came to light meanwhile. Where more than ten are of one rule and add-on, the tenth
    /// comes again and counts the others.
    std::vector<Finding> findings;
};

/// All of it, for people.
VEXASTANDIN_API std::ostream& operator<<(std::ostream& out, const TestedCommand& command);
/// The text of textOf().
VEXASTANDIN_API std::ostream& operator<<(std::ostream& out, const Finding& finding);

/// An add-on under test, in a stand-in host of its own that records. With GoogleTest, for example:
///
///     #include <gtest/gtest.h>
///     #include <vexastandin/Testing.h>
///
///     TEST(Greeter, RecordsWhatItUnderstood) {
///         vexa::standin::AddOnTester greeter("./libgreeter.so");
///         const auto fail = [](const std::string& finding) { ADD_FAILURE() << finding; };
///         const vexa::standin::ExpectNoFindings expectation(greeter.host(), fail);
///         const vexa::standin::TestedCommand greeted = greeter.run("GREET times = 2");
///         EXPECT_TRUE(greeted.accepted) << greeted;
///         EXPECT_EQ(greeted.recorded, std::vector<std::string>{"GREET TIMES = 2 "});
///     }
///
/// What the host answers, how the user stops a task, and which of its functions fail is told to host():
///
///     greeter.host().setStyle({"TEXT", "HEIGHT"}, 14.0);
///     greeter.host().pressStopAtPercent(50);
///     greeter.host().failCall("VexaUtilStringAlloc");
///
/// Nothing here depends on a test framework. An add-on that is linked into the test program, not loaded, is given by
/// its entry: `AddOnTester greeter(vexaAddOn)`.
class VEXASTANDIN_API AddOnTester {
public:
    /// Loads the add-on \p path. \throws LoadError
    explicit AddOnTester(const std::string& path);
    /// Takes an add-on that is part of the test program. \throws LoadError
    explicit AddOnTester(AddOnEntry entry);
    AddOnTester(const AddOnTester&) = delete;
    AddOnTester& operator=(const AddOnTester&) = delete;
    ~AddOnTester();

    /// Its host: the process's, until another one is constructed.
    Host& host() { return m_host; }
    /// The same.
    const Host& host() const { return m_host; }

    /// Runs a command of the add-on.
    /// \throws vexa::InvalidArgumentException when the add-on was unloaded.
    TestedCommand run(const std::string& command);

private:
    Host m_host;
    std::string m_id;
};

/// Expects of a host that no rule of its contract is broken until the end of the scope: there it unloads the add-ons,
/// for leaks show only then, and reports each finding of the host. AddOnTester shows use.
///
/// Errors: a report must not throw; one that does ends the program.
class VEXASTANDIN_API ExpectNoFindings {
public:
    /// \param host   lives longer than this.
    /// \param report called with the text of each finding; makes it a failure of the test.
    [[nodiscard]] ExpectNoFindings(Host& host, std::function<void(const std::string& text)> report);
    /// The same for one of several tests: what breaks the contract in all of them is reported in full once.
    /// \param causes those that were reported, in one line from now on; lives longer than this.
    [[nodiscard]] ExpectNoFindings(Host& host, std::function<void(const std::string& text)> report,
                                   FindingCauses& causes);
    ExpectNoFindings(const ExpectNoFindings&) = delete;
    ExpectNoFindings& operator=(const ExpectNoFindings&) = delete;
    ~ExpectNoFindings();

private:
    Host& m_host;
    std::function<void(const std::string& text)> m_report;
    FindingCauses* m_causes;
};

}  // namespace vexa::standin
