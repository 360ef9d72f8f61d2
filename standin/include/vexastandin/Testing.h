#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "vexastandin/Export.h"
#include "vexastandin/Finding.h"
#include "vexastandin/Host.h"

namespace vexa::standin {

/// A command that an add-on under test ran, and its results.
struct TestedCommand {
    std::string command;                ///< the add-on's id, a blank, and the command's text
    bool accepted = false;              ///< true if the add-on reported success
    std::string error;                  ///< the add-on's message, or the text of its exception; empty on success
    std::vector<std::string> recorded;  ///< the commands that it recorded, as texts that run() takes
    std::vector<std::string> dialogs;   ///< the texts of the error dialogs that it showed
    /// The findings that it caused. The host keeps ten findings per rule and add-on. If the command caused more, the
    /// list has the tenth finding, which counts the others.
    std::vector<Finding> findings;
};

/// Writes all fields as readable text.
VEXASTANDIN_API std::ostream& operator<<(std::ostream& out, const TestedCommand& command);
/// Writes textOf(\p finding).
VEXASTANDIN_API std::ostream& operator<<(std::ostream& out, const Finding& finding);

/// Runs an add-on under test in its own stand-in host, with recording on. An example with GoogleTest:
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
/// Use host() to set the host's answers, to press stop, and to let host functions fail:
///
///     greeter.host().setStyle({"TEXT", "HEIGHT"}, 14.0);
///     greeter.host().pressStopAtPercent(50);
///     greeter.host().failCall("VexaUtilStringAlloc");
///
/// This header depends on no test framework. If the add-on is linked into the test program, pass its entry instead of a
/// path: `AddOnTester greeter(vexaAddOn)`.
class VEXASTANDIN_API AddOnTester {
public:
    /// Loads the add-on from the file \p path.
    /// \throws LoadError as Host::loadAddOn() does.
    explicit AddOnTester(const std::string& path);
    /// Uses an add-on that is part of the test program.
    /// \throws LoadError as Host::linkAddOn() does.
    explicit AddOnTester(AddOnEntry entry);
    AddOnTester(const AddOnTester&) = delete;
    AddOnTester& operator=(const AddOnTester&) = delete;
    ~AddOnTester();

    /// Returns the add-on's host. It is the process's host until another Host is constructed.
    Host& host() { return m_host; }
    /// Returns the add-on's host.
    const Host& host() const { return m_host; }

    /// Runs a command of the add-on.
    /// \throws vexa::InvalidArgumentException if the add-on was unloaded.
    TestedCommand run(const std::string& command);

private:
    Host m_host;
    std::string m_id;
};

/// Reports the findings of a host at the end of its scope. Its destructor first unloads the add-ons, because the host
/// detects leaks only then. For an example see AddOnTester.
///
/// Errors: if \p report throws, the program ends.
class VEXASTANDIN_API ExpectNoFindings {
public:
    /// Stores both arguments for the destructor.
    /// \param host   must outlive this object.
    /// \param report called with the text of each finding. It should make the test fail.
    /// \throws vexa::InvalidArgumentException "Without a report no test would fail over a finding" if \p report is
    ///         empty.
    [[nodiscard]] ExpectNoFindings(Host& host, std::function<void(const std::string& text)> report);
    /// Does the same for several tests that share \p causes: only the first finding with a cause is reported in full.
    /// \param host   must outlive this object.
    /// \param report called with the text of each finding, or with one line if \p causes has its cause.
    /// \param causes receives the causes of the findings; must outlive this object.
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
