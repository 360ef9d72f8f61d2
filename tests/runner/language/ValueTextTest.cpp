#include "language/ValueText.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

OptionDescription optionOf(OptionType_e type, bool hasEscapes) {
    OptionDescription option;
    option.type = type;
    option.hasEscapes = hasEscapes;
    return option;
}

TEST(ValueText, QuotesATextAsItsCommandReadsIt) {
    const OptionDescription plain = optionOf(OptionType_e::String, false);
    const OptionDescription escaping = optionOf(OptionType_e::String, true);
    EXPECT_EQ(writtenValue("a b", plain, CommandKind_e::Command), "\"a b\"");
    EXPECT_EQ(writtenValue("say \"hi\"", plain, CommandKind_e::Command), "'say \"hi\"'");
    EXPECT_EQ(writtenValue("a b", plain, CommandKind_e::Processor), "'a b'");
    EXPECT_EQ(writtenValue("it's", plain, CommandKind_e::Processor), "\"it's\"");
    EXPECT_EQ(writtenValue("it's \\", escaping, CommandKind_e::Processor), R"('it\'s \\')");
    EXPECT_EQ(writtenValue("12", optionOf(OptionType_e::Int64, true), CommandKind_e::Processor), "12");
}

TEST(ValueText, AcceptsEveryTextThatItWrote) {
    for (const bool hasEscapes : {false, true}) {
        const OptionDescription option = optionOf(OptionType_e::String, hasEscapes);
        for (const char* const text : {"", "a", "it's", "say \"hi\"", "back\\slash"}) {
            const std::string written = writtenValue(text, option, CommandKind_e::Processor);
            EXPECT_FALSE(whyWrong(written, option, CommandKind_e::Processor)) << written;
        }
    }
}

TEST(ValueText, WritesAnEmptySetAsItsCommandReadsIt) {
    const OptionDescription zones = optionOf(OptionType_e::Set, true);
    const OptionDescription title = optionOf(OptionType_e::String, false);
    EXPECT_EQ(writtenValue("[]", zones, CommandKind_e::Command), "[]");
    EXPECT_EQ(writtenValue("[]", zones, CommandKind_e::Processor), "[ ]");
    EXPECT_EQ(writtenValue("[1]", zones, CommandKind_e::Processor), "[1]");
    EXPECT_EQ(writtenValue("[]", title, CommandKind_e::Processor), "'[]'");
}

TEST(ValueText, AssignsAsTheKindOfCommandDoes) {
    EXPECT_EQ(assignment("A", "1", CommandKind_e::Command), "A=1");
    EXPECT_EQ(assignment("A", "1", CommandKind_e::Processor), "A = 1");
}

}  // namespace
}  // namespace vexa::runner
