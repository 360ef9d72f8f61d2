#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

using Arguments = std::vector<std::string>;

class StyleCommand : public RunnerTest {
protected:
    /// `vexa-standin style --style s.json ARGUMENTS`
    ProgramResult style(Arguments arguments) const {
        arguments.insert(arguments.begin(), {"style", "--style", "s.json"});
        return runProgram(runner(std::move(arguments)));
    }
};

TEST_F(StyleCommand, PrintsKindAndValue) {
    write("s.json", R"({
        "FIELDMAP": {"MESH": {"LINETHICKNESS": 0.4}},
        "FRAME": -3,
        "TITLE": {"TEXT": "Wake ü"},
        "NOTE": {"TEXT": ""},
        "ACTIVEFIELDMAPS": [1, 2, 3, 5]
    })");
    struct Case {
        const char* why;
        Arguments path;
        const char* out;
    };
    const Case cases[] = {
        {"a double", {"FIELDMAP", "MESH", "LINETHICKNESS"}, "double 0.4\n"},
        {"an integer", {"FRAME"}, "integer -3\n"},
        {"a text", {"TITLE", "TEXT"}, "text Wake ü\n"},
        {"an empty text", {"NOTE", "TEXT"}, "text \n"},
        {"a set", {"ACTIVEFIELDMAPS"}, "set [1-3,5]\n"},
        {"in any letter case", {"FieldMap", "Mesh", "LineThickness"}, "double 0.4\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const ProgramResult result = style(c.path);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.out, c.out);
        EXPECT_EQ(result.err, "");
    }
}

TEST_F(StyleCommand, TakesOffsetsOfEitherSign) {
    write("s.json", R"({"SIZE": {"$offsets": [{"offset1": 1, "offset2": 2, "value": 12},
                                              {"offset1": -1, "value": 9},
                                              {"offset2": -3, "value": 7}], "$value": 1}})");
    EXPECT_EQ(style({"SIZE", "--offset1", "1", "--offset2", "2"}).out, "integer 12\n");
    EXPECT_EQ(style({"SIZE", "--offset1", "-1"}).out, "integer 9\n");
    EXPECT_EQ(style({"SIZE", "--offset1=-1"}).out, "integer 9\n");
    EXPECT_EQ(style({"--offset2", "-3", "SIZE"}).out, "integer 7\n");
    EXPECT_EQ(style({"SIZE", "--offset1", "2"}).out, "integer 1\n");
    EXPECT_EQ(style({"SIZE"}).out, "integer 1\n");
}

TEST_F(StyleCommand, TellsWhyThereIsNoValue) {
    write("s.json", R"({"FRAME": {"COLOR": 3}, "SIZE": {"$offsets": [{"offset1": 1, "value": 2.5}]}})");
    struct Case {
        const char* why;
        Arguments arguments;
        const char* err;
    };
    const Case cases[] = {
        {"not in the file", {"NOSUCH", "KEY"}, "NOSUCH KEY: unknown: the style file has no such setting\n"},
        {"below a value", {"FRAME", "COLOR", "X"}, "FRAME COLOR X: unknown: the style file has no such setting\n"},
        {"an empty keyword", {"FRAME", ""}, "FRAME : unknown: the style file has no such setting\n"},
        {"above a value",
         {"FRAME"},
         "FRAME: no value: the path is too short, or there is none for the offsets 0 and 0\n"},
        {"no value for these offsets",
         {"SIZE", "--offset1", "1", "--offset2", "-4"},
         "SIZE: no value: the path is too short, or there is none for the offsets 1 and -4\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const ProgramResult result = style(c.arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, c.err);
    }
}

TEST_F(StyleCommand, PrintsNothingOfAFileThatCannotBeUsed) {
    write("s.json", R"({"A": 0.5, "B": false})");
    const ProgramResult result = style({"A"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "s.json:1:17: expected a number, a text, a set or keywords\n");
}

}  // namespace
}  // namespace vexa::e2e
