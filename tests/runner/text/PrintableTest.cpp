#include "text/Printable.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

struct Case {
    const char* why;
    const char* text;
    const char* shown;
};

TEST(Printable, EscapesWhatATerminalWouldObey) {
    const Case cases[] = {
        {"an escape sequence", "a\033[2Jb", "a\\x1B[2Jb"},
        {"a bell", "\a", "\\x07"},
        {"a carriage return, which overwrites", "error\rfine", "error\\x0Dfine"},
        {"a backspace", "a\bb", "a\\x08b"},
        {"delete", "\x7F", "\\x7F"},
        {"the first control character of U+0080 to U+009F", "\xC2\x80", "\\xC2\\x80"},
        {"CSI in one character",
         "\xC2\x9B"
         "2J",
         "\\xC2\\x9B2J"},
        {"the last control character of U+0080 to U+009F", "\xC2\x9F", "\\xC2\\x9F"},
    };
    for (const Case& c : cases) EXPECT_EQ(printable(c.text), c.shown) << c.why;
    EXPECT_EQ(printable(std::string_view("a\0b", 3)), "a\\x00b");
}

TEST(Printable, EscapesWhatTurnsTheDirectionOfText) {
    const Case cases[] = {
        {"U+202A", "\u202A", "\\xE2\\x80\\xAA"}, {"U+202E", "\u202E", "\\xE2\\x80\\xAE"},
        {"U+2066", "\u2066", "\\xE2\\x81\\xA6"}, {"U+2069", "\u2069", "\\xE2\\x81\\xA9"},
        {"before them", "\u2027", "\u2027"},     {"between them", "\u202F", "\u202F"},
        {"also between", "\u2065", "\u2065"},    {"after them", "\u206A", "\u206A"},
        {"the same ends", "\u21AA", "\u21AA"},
    };
    for (const Case& c : cases) EXPECT_EQ(printable(c.text), c.shown) << c.why;
}

TEST(Printable, EscapesWhatIsNoUtf8) {
    const Case cases[] = {
        {"a byte that begins nothing", "\xFF", "\\xFF"},
        {"a lone continuation", "\x9B", "\\x9B"},
        {"a cut character", "a\xE2\x82", "a\\xE2\\x82"},
        {"a character cut by another",
         "\xE2\x82"
         "a",
         "\\xE2\\x82a"},
        {"an overlong form", "\xC0\xAF", "\\xC0\\xAF"},
        {"an overlong form of three", "\xE0\x80\xAF", "\\xE0\\x80\\xAF"},
        {"an overlong form of four", "\xF0\x80\x80\xAF", "\\xF0\\x80\\x80\\xAF"},
        {"a surrogate", "\xED\xA0\x80", "\\xED\\xA0\\x80"},
        {"beyond the last character", "\xF4\x90\x80\x80", "\\xF4\\x90\\x80\\x80"},
        {"no character", "\xEF\xBF\xBF", "\\xEF\\xBF\\xBF"},
    };
    for (const Case& c : cases) EXPECT_EQ(printable(c.text), c.shown) << c.why;
}

TEST(Printable, LeavesTextAsItIs) {
    for (const char* text :
         {"", "plain", "two\nlines\tand a tab\n", "C:\\x1B", "Größe", "中文", "\u00A0", "\U0001F600"}) {
        EXPECT_EQ(printable(text), text);
    }
}

TEST(Printable, DoesNotEscapeTwice) {
    const std::string once = printable("\033]0;a\a\xFF\u202E");
    EXPECT_EQ(printable(once), once);
}

TEST(PrintableLine, IsOneLine) { EXPECT_EQ(printableLine("a\nb\tc\033\n"), "a\\nb\\tc\\x1B\\n"); }

}  // namespace
}  // namespace vexa::runner
