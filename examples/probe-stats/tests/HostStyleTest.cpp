#include "HostStyle.h"

#include "AddOnTest.h"

namespace probestats {
namespace {

using vexa::standin::StyleValue;
using vexa::toolbox::Set;

const std::vector<std::string> kPrecision = {"Text", "NumberFormat", "Precision"};
const std::vector<std::string> kTitle = {"Frame", "Title", "Text"};
const std::vector<std::string> kActive = {"FieldMap", "ActiveFieldMaps"};

Set setOf(const std::string& text) {
    Set set;
    set.assign(text);
    return set;
}

TEST(HostStyle, IsWhatTheHostHas) {
    vexa::standin::Host host;
    host.setStyle(kPrecision, int64_t{4});
    host.setStyle(kTitle, std::string("Wake"));
    host.setStyle(kActive, setOf("[2-4]"));
    const HostStyle style = hostStyle();
    EXPECT_EQ(style.report.digits, 4);
    EXPECT_EQ(style.report.title, "Wake");
    EXPECT_EQ(style.activeColumns, setOf("[2-4]"));
}

TEST(HostStyle, IsTheDefaultWithoutComplaintWhereTheHostHasNone) {
    const vexa::standin::Host host;
    const HostStyle style = hostStyle();
    EXPECT_EQ(style.report.digits, 6);
    EXPECT_EQ(style.report.title, "");
    EXPECT_EQ(style.activeColumns, std::nullopt);
    EXPECT_TRUE(host.dialogs().empty());
}

TEST(HostStyle, IsTheDefaultWhereTheHostHasAnotherKindOfValue) {
    vexa::standin::Host host;
    for (const auto& path : {kPrecision, kTitle, kActive}) host.setStyle(path, 4.0);
    const HostStyle style = hostStyle();
    EXPECT_EQ(style.report.digits, 6);
    EXPECT_EQ(style.report.title, "");
    EXPECT_EQ(style.activeColumns, std::nullopt);
}

TEST(HostStyle, IsTheDefaultBeyondWhatDoublesHaveOfDigits) {
    for (const int64_t digits : {int64_t{0}, int64_t{-1}, int64_t{18}, int64_t{1} << 40}) {
        SCOPED_TRACE(digits);
        vexa::standin::Host host;
        host.setStyle(kPrecision, digits);
        EXPECT_EQ(hostStyle().report.digits, 6);
    }
    for (const int64_t digits : {1, 17}) {
        vexa::standin::Host host;
        host.setStyle(kPrecision, digits);
        EXPECT_EQ(hostStyle().report.digits, digits);
    }
}

TEST(HostStyle, IsTheDefaultWhenTheHostHasNoMemoryForTheQuestion) {
    vexa::standin::Host host;
    host.setStyle(kPrecision, int64_t{4});
    host.failCall("VexaUtilArgListAlloc");
    EXPECT_EQ(hostStyle().report.digits, 6);
}

/// With columns 1 to 3 of the small file loaded.
class StyledOutput : public AddOnTest {
protected:
    StyledOutput() { run("LOAD FILE='probe.txt' COLUMNS=[1-3] SAMPLERATE=2"); }
};

TEST_F(StyledOutput, ShowsTitleDigitsAndActiveColumns) {
    host.setStyle(kPrecision, int64_t{3});
    host.setStyle(kTitle, std::string("Behind the cylinder"));
    host.setStyle(kActive, setOf("[2,7]"));
    EXPECT_EQ(run("SUMMARIZE"),
              "Behind the cylinder\n"
              "probe.txt: 4 rows, from 1 to 4, 2 Hz\n"
              "column    count       mean  deviation    minimum    maximum\n"
              "     2        4        2.5       1.29          1          4\n");
}

TEST_F(StyledOutput, IsTheUsualOneAgainWhenTheStyleIs) {
    const std::string before = run("SUMMARIZE");
    host.setStyle(kPrecision, int64_t{3});
    EXPECT_NE(run("SUMMARIZE"), before);
    host.setStyle(kPrecision, int64_t{6});
    EXPECT_EQ(run("SUMMARIZE"), before);
}

TEST_F(StyledOutput, ShowsColumnsNamedByTheCommandThoughTheyAreNotActive) {
    const std::string before = run("SUMMARIZE COLUMNS = [3]");
    host.setStyle(kActive, setOf("[2]"));
    EXPECT_EQ(run("SUMMARIZE COLUMNS = [3]"), before);
}

TEST_F(StyledOutput, GoesToAFileAndIntoASpectrumToo) {
    std::string rows;
    for (int i = 0; i < 32; ++i) rows += std::string(i % 4 < 2 ? "1.5" : "-1.5") + " 7 8\n";
    writeText("wave.txt", rows);
    run("LOAD FILE='wave.txt' SAMPLERATE=64");
    host.setStyle(kTitle, std::string("Wave"));
    host.setStyle(kActive, setOf("[1]"));
    run("SPECTRUM FILE = 'spectrum.txt'");
    const std::string spectrum = readText("spectrum.txt");
    EXPECT_EQ(spectrum.rfind("Wave\nwave.txt: ", 0), 0u) << spectrum;
    EXPECT_EQ(spectrum.find("\n     2"), std::string::npos) << spectrum;
}

TEST_F(StyledOutput, SaysWhenNoLoadedColumnIsActive) {
    host.setStyle(kActive, setOf("[4-5]"));
    EXPECT_EQ(refusalOf("SUMMARIZE"),
              "Error: Active in the host are [4-5], but loaded are [1-3]: name some with COLUMNS");
    EXPECT_EQ(refusalOf("SPECTRUM"),
              "Error: Active in the host are [4-5], but loaded are [1-3]: name some with COLUMNS");
}

TEST_F(AddOnTest, NamesFileAndLineOfAMalformedRowOnceAndInNoDialog) {
    writeText("broken.txt", "# u p\n1 2\n\n3 x\n5 6\n");
    EXPECT_EQ(refusalOf("LOAD FILE='broken.txt'"), "Error: broken.txt:4: column 2 is no number: \"x\"");
    EXPECT_TRUE(host.dialogs().empty());
}

}  // namespace
}  // namespace probestats
