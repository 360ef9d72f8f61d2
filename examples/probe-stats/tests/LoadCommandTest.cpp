#include "LoadCommand.h"

#include "AddOnTest.h"
#include "ProbeError.h"

namespace probestats {
namespace {

std::string rendered(const std::string& text) { return LoadCommand(text).toString(); }

TEST(LoadCommand, RendersOptionsOfEveryTypeInOneOrder) {
    EXPECT_EQ(rendered("TIMECOLUMN=07 SKIPROWS=3 SAMPLERATE=+50 HEADER=true FILE=\"it's\" COLUMNS=[3,1-2]"),
              "LOAD COLUMNS=[1-3] FILE=\"it's\" HEADER=TRUE SAMPLERATE=50 SKIPROWS=3 TIMECOLUMN=7");
}

TEST(LoadCommand, LeavesDefaultsOut) {
    EXPECT_EQ(rendered("SKIPROWS=0 HEADER=FALSE FILE='a'"), "LOAD FILE='a'");
    EXPECT_EQ(rendered(""), "LOAD");
}

TEST(LoadCommand, KeepsTheQuotesThatATextWasWrittenWith) {
    EXPECT_EQ(rendered("FILE='say \"hi\"'"), "LOAD FILE='say \"hi\"'");
    EXPECT_EQ(rendered("FILE=\"a  b\\\""), "LOAD FILE=\"a  b\\\"");
}

TEST(LoadCommand, IsReadBackAsItWasRendered) {
    const std::string word = "LOAD";
    for (const char* text : {"FILE='a'", "HEADER=TRUE", "COLUMNS=[5,1-3]", "SKIPROWS=18446744073709551615",
                             "  SKIPROWS=1   FILE=\" = [ \"  COLUMNS=[ 1 ] "}) {
        SCOPED_TRACE(text);
        const std::string once = rendered(text);
        EXPECT_EQ(rendered(once.substr(word.size())), once);
    }
}

TEST(LoadCommand, CarriesOptionsOfEveryTypeToTheRequest) {
    const ProbeFileRequest request = LoadCommand("TIMECOLUMN=2 SKIPROWS=3 HEADER=TRUE FILE='a' COLUMNS=[1]").request();
    EXPECT_EQ(request.fileName, "a");
    ASSERT_TRUE(request.columns);
    EXPECT_EQ(request.columns->toString(), "[1]");
    EXPECT_TRUE(request.hasHeader);
    EXPECT_EQ(request.skipRows, 3u);
    EXPECT_EQ(request.timeColumn, 2u);
    EXPECT_EQ(request.sampleRate, std::nullopt);
    EXPECT_EQ(LoadCommand("SAMPLERATE=50 FILE='a'").request().sampleRate, 50.0);
}

TEST(LoadCommand, AsksForNothingButTheFileUnlessTold) {
    const ProbeFileRequest request = LoadCommand("FILE='a'").request();
    EXPECT_FALSE(request.columns);
    EXPECT_FALSE(request.hasHeader);
    EXPECT_EQ(request.skipRows, 0u);
    EXPECT_FALSE(request.timeColumn);
    EXPECT_FALSE(request.sampleRate);
}

class ExecutedLoadCommand : public FolderTest {};

TEST_F(ExecutedLoadCommand, HoldsWhatItRead) {
    writeText("a", "1 2\n3 4\n");
    LoadCommand command("FILE='a' COLUMNS=[2]");
    command.execute();
    EXPECT_EQ(command.data().columns.front().values, (std::vector<double>{2, 4}));
}

}  // namespace
}  // namespace probestats
