#include "formats/JunitText.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

bool has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(JunitText, HasEachTestWithItsOutcome) {
    const std::string xml = junitText("suite", {{"seed", "7"}},
                                      {{"c", "passes", 0.5, JunitOutcome_e::Passed, "", "", ""},
                                       {"c", "remarks", 0, JunitOutcome_e::Remarked, "", "", "slow"},
                                       {"c", "skipped", 0, JunitOutcome_e::Skipped, "", "no macro", ""},
                                       {"c", "fails", 0.25, JunitOutcome_e::Failure, "failed", "wrong", "all of it"},
                                       {"c", "crashes", 0, JunitOutcome_e::Error, "crashed", "SIGSEGV", ""}});
    EXPECT_EQ(xml, R"(<?xml version="1.0" encoding="UTF-8"?>
<testsuites>
  <testsuite name="suite" tests="5" failures="1" errors="1" skipped="1" time="0.750">
    <properties>
      <property name="seed" value="7"/>
    </properties>
    <testcase classname="c" name="passes" time="0.500"/>
    <testcase classname="c" name="remarks" time="0.000">
      <system-out>slow</system-out>
    </testcase>
    <testcase classname="c" name="skipped" time="0.000">
      <skipped message="no macro"/>
    </testcase>
    <testcase classname="c" name="fails" time="0.250">
      <failure message="wrong" type="failed">all of it</failure>
    </testcase>
    <testcase classname="c" name="crashes" time="0.000">
      <error message="SIGSEGV" type="crashed"></error>
    </testcase>
  </testsuite>
</testsuites>
)");
}

TEST(JunitText, EscapesWhatXmlWouldRead) {
    EXPECT_TRUE(has(junitText("a<b>&\"\n\t", {}, {}), R"(name="a&lt;b&gt;&amp;&quot;&#10;&#9;")"));
}

TEST(JunitText, ShowsABytesCodeWhereXmlHasNoCharacter) {
    EXPECT_TRUE(has(junitText("\033\xFF", {}, {}), R"(name="\x1B\xFF")"));
}

}  // namespace
}  // namespace vexa::runner
