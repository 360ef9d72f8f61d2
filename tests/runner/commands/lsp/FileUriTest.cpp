#include "commands/lsp/FileUri.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

TEST(FileUri, HasThePathOfAFileOfThisComputer) {
    struct Case {
        const char* why;
        const char* uri;
        const char* path;
    };
    const Case cases[] = {
        {"a plain path", "file:///tmp/a.macro", "/tmp/a.macro"},
        {"coded bytes", "file:///tmp/a%20b%C3%b6.macro", "/tmp/a b\u00F6.macro"},
        {"this computer by name", "file://localhost/tmp/a", "/tmp/a"},
        {"a sign that starts no code", "file:///a%2/%zz%", "/a%2/%zz%"},
        {"a code at the end", "file:///a%62", "/ab"},
        {"another computer", "file://server/tmp/a", ""},
        {"no file", "untitled:Untitled-1", ""},
        {"a NUL byte, which no path has", "file:///a%00b", ""},
        {"nothing", "", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(pathOfUri(c.uri), c.path) << c.why;
}

}  // namespace
}  // namespace vexa::runner
