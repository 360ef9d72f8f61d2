#include "commands/lsp/MacroDocument.h"

#include <gtest/gtest.h>

#include "formats/DescriptionFile.h"
#include "text/Joined.h"

namespace vexa::runner {
namespace {

const Descriptions& described() {
    static const Descriptions descriptions(
        parseDescription(R"({"addon": "S", "commands": [{"name": "M", "kind": "processor", "purpose": "p"}]})", "f")
            .description);
    return descriptions;
}

std::string textOf(const MacroDocument& document) {
    std::vector<std::string> lines;
    for (const auto& line : document.lines()) lines.push_back(line.text);
    return joined(lines, "\n");
}

// The numbers of the lines that are not checked.
std::string changedIn(const MacroDocument& document) {
    std::string changed;
    for (std::size_t i = 0; i < document.lines().size(); ++i) {
        if (!document.lines()[i].isChecked) changed += std::to_string(i);
    }
    return changed;
}

TEST(MacroDocument, ReplacesAPartOfItsText) {
    struct Case {
        const char* why;
        TextPlace begin;
        TextPlace end;
        const char* put;
        const char* text;
        const char* changed;
    };
    const Case cases[] = {
        {"within a line", {1, 1}, {1, 2}, "xy", "a\nBxyB\nc\nd", "1"},
        {"into the start", {0, 0}, {0, 0}, "x\n", "x\na\nBBB\nc\nd", "01"},
        {"at the end", {3, 1}, {3, 1}, "\n", "a\nBBB\nc\nd\n", "34"},
        {"a line end away", {1, 3}, {2, 0}, "", "a\nBBBc\nd", "1"},
        {"several lines by one", {0, 1}, {3, 0}, "-", "a-d", "0"},
        {"one line by several", {1, 0}, {1, 3}, "1\n2\n3", "a\n1\n2\n3\nc\nd", "123"},
        {"everything", {0, 0}, {3, 1}, "", "", "0"},
    };
    for (const Case& c : cases) {
        MacroDocument document("a\nBBB\nc\nd");
        document.check(described());
        document.replace(c.begin, c.end, c.put);
        EXPECT_EQ(textOf(document), c.text) << c.why;
        EXPECT_EQ(changedIn(document), c.changed) << c.why;
    }
}

TEST(MacroDocument, KeepsEqualLinesCheckedWhenAllIsReplaced) {
    struct Case {
        const char* why;
        const char* text;
        const char* changed;
    };
    const Case cases[] = {
        {"no change", "a\nb\nc\nd", ""},
        {"a line in the middle", "a\nx\nc\nd", "1"},
        {"a line more", "a\nb\nx\nc\nd", "2"},
        {"a line less", "a\nb\nd", ""},
        {"equal lines on both sides", "a\nb\nb\nc\nd", "2"},
        {"the first line goes down", "x\na\nb\nc\nd", "01"},
        {"the second line becomes the first", "b\nc\nd", "0"},
        {"only the last line", "d", "0"},
        {"nothing", "", "0"},
    };
    for (const Case& c : cases) {
        MacroDocument document("a\nb\nc\nd");
        document.check(described());
        document.replaceAll(c.text);
        EXPECT_EQ(textOf(document), c.text) << c.why;
        EXPECT_EQ(changedIn(document), c.changed) << c.why;
    }
}

TEST(MacroDocument, TakesAByteOrderMarkOnlyInTheFirstLine) {
    MacroDocument document("\xEF\xBB\xBFS M\nS M");
    document.check(described());
    EXPECT_EQ(document.lines()[0].mistakes.size(), 0U);
    document.replaceAll("S M\n\xEF\xBB\xBFS M\nS M");
    document.check(described());
    EXPECT_EQ(document.lines()[1].mistakes.size(), 1U);
}

TEST(MacroDocument, ForgetsMistakesWhenDescriptionsChange) {
    MacroDocument document("S X");
    document.check(described());
    EXPECT_EQ(document.lines()[0].mistakes.at(0).rule, std::string(kUnknownCommand));
    document.forgetMistakes();
    document.check(Descriptions(
        parseDescription(R"({"addon": "S", "commands": [{"name": "X", "kind": "command", "purpose": "p"}]})", "f")
            .description));
    EXPECT_TRUE(document.lines()[0].mistakes.empty());
}

TEST(MacroDocument, CostsMoreThanItsText) {
    MacroDocument document("S X\nS X\n");
    const std::size_t unchecked = document.cost();
    document.check(described());
    EXPECT_EQ(document.size(), 6U);
    EXPECT_GT(unchecked, 6U);
    EXPECT_GT(document.cost(), unchecked) << "mistakes need memory";
}

}  // namespace
}  // namespace vexa::runner
