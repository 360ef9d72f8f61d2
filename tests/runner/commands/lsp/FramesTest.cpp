#include "commands/lsp/Frames.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "system/Descriptor.h"

namespace vexa::runner {
namespace {

// What a reader finds in `input`: messages as they are, reasons after "!".
std::vector<std::string> framesIn(const std::string& input) {
    Pipe pipe;
    std::thread writer([&] {
        writeAll(pipe.writer.get(), input);
        pipe.writer.close();
    });
    std::vector<std::string> found;
    FrameReader reader(pipe.reader.get());
    for (InputFrame frame = reader.next(); frame.kind != InputFrame::Kind_e::End; frame = reader.next()) {
        found.push_back((frame.kind == InputFrame::Kind_e::Refused ? "!" : "") + frame.text);
    }
    writer.join();
    return found;
}

using Found = std::vector<std::string>;

TEST(Frames, AreReadOneAfterTheOther) {
    EXPECT_EQ(framesIn(framed("{}") + framed("") + framed("[\n]")), (Found{"{}", "", "[\n]"}));
}

TEST(Frames, MayHaveOtherFieldsAndAnyLetterCase) {
    EXPECT_EQ(framesIn("Content-Type: x; charset=utf-8\r\ncontent-LENGTH:  2 \r\n\r\nab"), Found{"ab"});
    EXPECT_EQ(framesIn("Content-Length: 2\n\nab"), Found{"ab"});
}

TEST(Frames, MayBeLargerThanAReadFromThePipe) {
    const std::string large(300000, 'x');
    EXPECT_EQ(framesIn(framed(large) + framed("a")), (Found{large, "a"}));
}

TEST(Frames, EndInTheMiddleOfAMessage) {
    EXPECT_EQ(framesIn("Content-Length: 9\r\n\r\nab"), Found{});
    EXPECT_EQ(framesIn("Content-Le"), Found{});
    EXPECT_EQ(framesIn(""), Found{});
}

TEST(Frames, AreRefusedWithAReasonAndTheNextOneIsFound) {
    struct Case {
        const char* header;
        const char* reason;
    };
    const Case cases[] = {
        {"\r\n", "!the header has no Content-Length"},
        {"Content-Type: x\r\n\r\n", "!the header has no Content-Length"},
        {"Content-Length: -1\r\n\r\n", "!expected a Content-Length from 0 to 16777216, but found -1"},
        {"Content-Length: 1x\r\n\r\n", "!expected a Content-Length from 0 to 16777216, but found 1x"},
        {"Content-Length: \r\n\r\n", "!expected a Content-Length from 0 to 16777216, but found "},
        {"Content-Length: 16777217\r\n\r\n", "!expected a Content-Length from 0 to 16777216, but found 16777217"},
        {"Content-Length: 99999999999999999999999\r\n\r\n",
         "!expected a Content-Length from 0 to 16777216, but found 99999999999999999999999"},
        {"{}\r\n", "!expected a header with Content-Length, but found {}"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(framesIn(c.header + framed("a")), (Found{c.reason, "a"})) << c.header;
        EXPECT_EQ(framesIn(std::string(c.header) + "{\"skipped\":1}" + framed("a")), (Found{c.reason, "a"}))
            << c.header;
    }
}

TEST(Frames, OfALostSizeAreSkippedWithoutKeepingThem) {
    const std::string skipped(10 * 1000 * 1000, 'x');
    EXPECT_EQ(framesIn("Content-Length: 10000000000\r\n\r\n" + skipped + framed("a")).back(), "a");
}

}  // namespace
}  // namespace vexa::runner
