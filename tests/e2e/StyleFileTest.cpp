#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

using namespace std::string_literals;

using Arguments = std::vector<std::string>;

class StyleFile : public RunnerTest {
protected:
    Program styleProgram(Arguments arguments) const {
        arguments.insert(arguments.begin(), {"style", "--style", "s.json"});
        return runner(std::move(arguments));
    }

    /// The kind and value of a setting of the style file \p json, or the reason why there is none.
    std::string valueIn(const std::string& json, const Arguments& arguments) const {
        write("s.json", json);
        const ProgramResult result = runProgram(styleProgram(arguments));
        return result.out + result.err;
    }

    /// The error message for the style file \p json.
    std::string refusalOf(const std::string& json) const {
        write("s.json", json);
        const ProgramResult result = runProgram(styleProgram({"A"}));
        EXPECT_EQ(result.status, 2) << json;
        EXPECT_EQ(result.out, "") << json;
        return result.err;
    }
};

struct RefusedFile {
    const char* why;
    std::string json;
    const char* err;
};

TEST_F(StyleFile, HoldsEachKindOfValue) {
    struct Case {
        const char* why;
        const char* json;
        Arguments path;
        const char* value;
    };
    const Case cases[] = {
        {"a point makes a double", R"({"A": 3.0})", {"A"}, "double 3\n"},
        {"an exponent makes a double", R"({"A": 1E3})", {"A"}, "double 1000\n"},
        {"a marked integer", R"({"A": {"$double": 5}})", {"A"}, "double 5\n"},
        {"a marked double", R"({"A": {"$double": 5.5}})", {"A"}, "double 5.5\n"},
        {"a double in place of a text", R"({"TEXT": 0.5})", {"TEXT"}, "double 0.5\n"},
        {"a double in place of a set", R"({"USECLIPPLANES": {"$double": 2}})", {"USECLIPPLANES"}, "double 2\n"},
        {"the largest integer", R"({"A": 9223372036854775807})", {"A"}, "integer 9223372036854775807\n"},
        {"the smallest integer", R"({"A": -9223372036854775808})", {"A"}, "integer -9223372036854775808\n"},
        {"minus zero", R"({"A": -0})", {"A"}, "integer 0\n"},
        {"escapes in a text", R"({"TEXT": "\u00fc\t\"b\""})", {"TEXT"}, "text ü\t\"b\"\n"},
        {"an empty set", R"({"USECLIPPLANES": []})", {"USECLIPPLANES"}, "set []\n"},
        {"indices in any order", R"({"USECLIPPLANES": [7, 0, 7]})", {"USECLIPPLANES"}, "set [0,7]\n"},
        {"indices and ranges", R"({"USECLIPPLANES": [1, 2, "5-7"]})", {"USECLIPPLANES"}, "set [1-2,5-7]\n"},
        {"a stepped range", R"({"USECLIPPLANES": ["1-7:3"]})", {"USECLIPPLANES"}, "set [1,4,7]\n"},
        {"a set as text", R"({"USECLIPPLANES": {"$set": "[1-3, 5]"}})", {"USECLIPPLANES"}, "set [1-3,5]\n"},
        {"six keywords", R"({"A":{"B":{"C":{"D":{"E":{"F":1}}}}}})", {"A", "B", "C", "D", "E", "F"}, "integer 1\n"},
        {"a byte-order mark", "\xEF\xBB\xBF{\"A\": 1}", {"A"}, "integer 1\n"},
        {"no settings", "{}", {"A"}, "A: unknown: the style file has no such setting\n"},
    };
    for (const Case& c : cases) EXPECT_EQ(valueIn(c.json, c.path), c.value) << c.why;
}

TEST_F(StyleFile, GivesOffsetsTheirValues) {
    const char* const json = R"({"A": {"$offsets": [
        {"offset1": 1, "offset2": 0, "value": {"$double": 2}},
        {"value": 3, "offset2": 1},
        {"offset1": -9223372036854775808, "value": 4}
    ]}})";
    EXPECT_EQ(valueIn(json, {"A", "--offset1", "1"}), "double 2\n");
    EXPECT_EQ(valueIn(json, {"A", "--offset2", "1"}), "integer 3\n");
    EXPECT_EQ(valueIn(json, {"A", "--offset1=-9223372036854775808"}), "integer 4\n");
    EXPECT_EQ(valueIn(json, {"A"}), "A: no value: the path is too short, or there is none for the offsets 0 and 0\n");
}

TEST_F(StyleFile, GivesAllOtherOffsetsTheOtherValue) {
    const char* const json = R"({"TEXT": {"$value": "others", "$offsets": [{"offset1": 1, "value": "one"}]}})";
    EXPECT_EQ(valueIn(json, {"TEXT", "--offset1", "1"}), "text one\n");
    EXPECT_EQ(valueIn(json, {"TEXT", "--offset1", "2"}), "text others\n");
}

TEST_F(StyleFile, ThatIsNoJsonIsRefused) {
    const RefusedFile cases[] = {
        {"ends early", "{\n  \"A\": 1\n",
         "s.json:2:9: syntax error while parsing object - unexpected end of input; "
         "expected '}'\n"},
        {"is empty", "",
         "s.json:1:1: syntax error while parsing value - unexpected end of input; expected '[', '{', or "
         "a literal\n"},
        {"a comma too many", "{\"A\": 1,\n\n }",
         "s.json:3:2: syntax error while parsing object key - unexpected '}'; "
         "expected string literal\n"},
        {"text behind it", "{}\n {}",
         "s.json:2:2: syntax error while parsing value - unexpected '{'; expected end of "
         "input\n"},
        {"a number too large", "{\"A\":\n 1e999}", "s.json:2:2: number overflow parsing '1e999'\n"},
        {"nested too deeply", std::string(100000, '['), "s.json:1:17: nested too deeply\n"},
    };
    for (const RefusedFile& c : cases) EXPECT_EQ(refusalOf(c.json), c.err) << c.why;
    const std::string notUtf8 = refusalOf("{\"TEXT\":\n \"\xFC\"}");
    EXPECT_EQ(notUtf8.rfind("s.json:2:2: syntax error while parsing value - invalid string: ill-formed UTF-8", 0), 0U)
        << notUtf8;
}

TEST_F(StyleFile, WithAWrongValueIsRefused) {
    const RefusedFile cases[] = {
        {"no object", "[1]", "s.json:1:1: expected an object of keywords\n"},
        {"null", "{\"A\": 1,\n \"B\": null}", "s.json:2:7: expected a number, a text, a set or keywords\n"},
        {"a boolean", "{\"A\": {\"B\":\n\n true}}", "s.json:3:2: expected a number, a text, a set or keywords\n"},
        {"nothing", "{\"A\": {}}", "s.json:1:7: expected keywords or a value, but there is nothing\n"},
        {"an integer above 64 bits", "{\"A\": 18446744073709551616\n}",
         "s.json:1:7: the integer needs more than 64 bits; with .0 after it, it is a double\n"},
        {"an integer above 63 bits", "{\"A\": 9223372036854775808\n}",
         "s.json:1:7: the integer needs more than 64 bits; with .0 after it, it is a double\n"},
        {"an integer far below", "{\"A\": -9223372036854775809}",
         "s.json:1:7: the integer needs more than 64 bits; with .0 after it, it is a double\n"},
        {"a NUL in a text", "{\"TEXT\": \"a\\u0000b\"}", "s.json:1:10: a text must not contain a NUL\n"},
        {"a negative index", "{\"USECLIPPLANES\": [1,\n -2]}",
         "s.json:2:2: expected an index of 0 or more, or a range such as \"5-7\"\n"},
        {"an index with a point", "{\"USECLIPPLANES\": [1,\n2.5]}",
         "s.json:2:1: expected an index of 0 or more, or a range such as \"5-7\"\n"},
        {"a set in a set", "{\"USECLIPPLANES\": [1, [2]]}",
         "s.json:1:23: expected an index of 0 or more, or a range such as \"5-7\"\n"},
        {"a set that is no text", "{\"USECLIPPLANES\": {\"$set\": [1]}}",
         "s.json:1:28: expected a set as text, such as \"[1-3,5]\"\n"},
        {"a double that is a text", "{\"A\": {\"$double\": \"5\"}}", "s.json:1:19: expected a number\n"},
    };
    for (const RefusedFile& c : cases) EXPECT_EQ(refusalOf(c.json), c.err) << c.why;
}

TEST_F(StyleFile, WithAWrongRangeIsRefusedAsSetsRefuseIt) {
    EXPECT_EQ(refusalOf("{\"USECLIPPLANES\": [1,\n \"7-5\"]}").rfind("s.json:2:2: Expected ", 0), 0U);
    EXPECT_EQ(refusalOf("{\"USECLIPPLANES\": {\n\"$set\": \"1-3\"}}").rfind("s.json:2:9: Expected ", 0), 0U);
}

TEST_F(StyleFile, TakesIndicesInAnyOrder) {
    const Arguments path = {"USECLIPPLANES"};
    EXPECT_EQ(valueIn(R"({"USECLIPPLANES": [9, " ", 7, "1-3", 2, "", "20-29:9,5"]})", path), "set [1-3,5,7,9,20,29]\n");
    EXPECT_EQ(valueIn(R"({"USECLIPPLANES": [""]})", path), "set []\n");
}

TEST_F(StyleFile, WithManyIndicesInDescendingOrderIsRead) {
    std::string indices;
    for (int index = 800000; index > 0; index -= 2) indices += std::to_string(index) + ',';
    write("s.json", "{\"USECLIPPLANES\": [" + indices + "0]}");
    const ProgramResult result = runProgram(styleProgram({"USECLIPPLANES"}));
    EXPECT_EQ(result.out.substr(0, 13), "set [0,2,4,6,") << result.err;
}

TEST_F(StyleFile, BoundsTheMembersOfAllItemsOfASetTogether) {
    const std::string refusal = refusalOf("{\"USECLIPPLANES\": [1, \"0-20000000:2\",\n \"1-20000001:2\", 5]}");
    const std::string expected = "s.json:2:2: Expected at most 16777216 members in stepped ranges at column ";
    EXPECT_EQ(refusal.substr(0, expected.size()), expected);
}

TEST_F(StyleFile, IsQuotedShortlyWhenItIsRefused) {
    const std::string key(100000, 'K');
    const std::string cases[] = {"{\"A\": " + std::string(100000, '1') + '}', "{\"A\": \"" + key,
                                 "{\"" + key + "\": 1, \"" + key + "\": 1}"};
    for (const std::string& json : cases) {
        const std::string refusal = refusalOf(json);
        EXPECT_LT(refusal.size(), 400u);
        EXPECT_NE(refusal.find("..."), std::string::npos) << refusal;
    }
}

TEST_F(StyleFile, WithAWrongKeywordIsRefused) {
    const RefusedFile cases[] = {
        {"empty", "{\"A\": {\"\": 1}}", "s.json:1:8: a keyword is empty\n"},
        {"a NUL", "{\"A\\u0000\": 1}", "s.json:1:2: a keyword must not contain a NUL\n"},
        {"seven", "{\"A\":{\"B\":{\"C\":{\"D\":{\"E\":{\"F\":\n{\"G\":1}}}}}}}",
         "s.json:2:2: 'G' is the seventh keyword of a path; at most six are allowed\n"},
        {"given twice", "{\"A\": 1,\n \"B\": 1,\n \"A\": 2}",
         "s.json:3:2: 'A' is given twice; the case of letters does not matter\n"},
        {"given twice, in another letter case", "{\"Ab\": {\"X\": 1}, \"aB\": {\"Y\": 2}}",
         "s.json:1:18: 'aB' is given twice; the case of letters does not matter\n"},
        {"an unknown mark", "{\"A\": {\"$integer\": 5}}",
         "s.json:1:8: '$integer' is not one of '$double', '$set', '$offsets', '$value'\n"},
        {"a mark at the top", "{\"$double\": 5}", "s.json:1:2: '$double' cannot be used beside keywords\n"},
        {"a mark among keywords", "{\"A\": {\"$double\": 5, \"B\": 1}}",
         "s.json:1:22: 'B' is not one of '$double', '$set', '$offsets', '$value'\n"},
    };
    for (const RefusedFile& c : cases) EXPECT_EQ(refusalOf(c.json), c.err) << c.why;
}

TEST_F(StyleFile, WithWrongMarksIsRefused) {
    const RefusedFile cases[] = {
        {"two of them", R"({"A": {"$double": 5, "$set": "[]"}})", "s.json:1:7: expected either '$double' or '$set'\n"},
        {"one twice", R"({"A": {"$double": 5, "$double": 6}})", "s.json:1:22: '$double' is given twice\n"},
        {"a value without offsets", R"({"A": {"$value": 5}})", "s.json:1:7: expected '$offsets' with the '$value'\n"},
        {"a double beside offsets", R"({"A": {"$offsets": [], "$double": 5}})",
         "s.json:1:24: '$double' is not one of '$offsets', '$value'\n"},
        {"offsets that are no array", R"({"A": {"$offsets": 1}})",
         "s.json:1:20: expected an array of values with offsets\n"},
        {"no offsets", R"({"A": {"$offsets": []}})", "s.json:1:20: expected an array of values with offsets\n"},
        {"an entry that is no object", R"({"A": {"$offsets": [5]}})",
         "s.json:1:21: expected an object of 'offset1', 'offset2' and 'value'\n"},
        {"an entry without a value", R"({"A": {"$offsets": [{"offset1": 5}]}})",
         "s.json:1:21: expected a 'value' for the offsets\n"},
        {"an entry with something else", R"({"A": {"$offsets": [{"offset3": 5, "value": 1}]}})",
         "s.json:1:22: 'offset3' is not one of 'offset1', 'offset2', 'value'\n"},
        {"an offset that is no integer", R"({"A": {"$offsets": [{"offset1": 1.0, "value": 1}]}})",
         "s.json:1:33: expected an integer\n"},
        {"an offset twice in an entry", R"({"A": {"$offsets": [{"offset1": 1, "offset1": 2, "value": 1}]}})",
         "s.json:1:36: 'offset1' is given twice\n"},
        {"the same offsets twice",
         "{\"A\": {\"$offsets\": [{\"offset1\": 0, \"value\": 1},\n{\"offset2\": 0, \"value\": 2}]}}",
         "s.json:2:1: these offsets are given twice\n"},
        {"offsets within offsets", R"({"A": {"$offsets": [{"value": {"$offsets": []}}]}})",
         "s.json:1:32: '$offsets' is not one of '$double', '$set'\n"},
    };
    for (const RefusedFile& c : cases) EXPECT_EQ(refusalOf(c.json), c.err) << c.why;
}

TEST_F(StyleFile, WithAKindThatAddOnsMistakeIsRefused) {
    const RefusedFile cases[] = {
        {"a text for an integer", R"({"TITLE": "Wake"})",
         "s.json:1:11: add-ons take 'TITLE' for an integer unless it is a double, but this is a text\n"},
        {"a set for an integer", R"({"ZONES": [1]})",
         "s.json:1:11: add-ons take 'ZONES' for an integer unless it is a double, but this is a set\n"},
        {"an integer for a text", R"({"A": {"zeroSuffix": 5}})",
         "s.json:1:22: add-ons take 'zeroSuffix' for a text unless it is a double, but this is an integer\n"},
        {"a set for a text", R"({"NAME": {"$set": "[]"}})",
         "s.json:1:10: add-ons take 'NAME' for a text unless it is a double, but this is a set\n"},
        {"an integer for a set", R"({"ActiveFieldMaps": 5})",
         "s.json:1:21: add-ons take 'ActiveFieldMaps' for a set unless it is a double, but this is an integer\n"},
        {"a text for a set", R"({"UseClipPlanes": "[1]"})",
         "s.json:1:19: add-ons take 'UseClipPlanes' for a set unless it is a double, but this is a text\n"},
        {"only the last keyword counts", R"({"TEXT": {"A": "Wake"}})",
         "s.json:1:16: add-ons take 'A' for an integer unless it is a double, but this is a text\n"},
        {"of one pair of offsets", R"({"A": {"$offsets": [{"value": 5}, {"offset1": 1, "value": "one"}]}})",
         "s.json:1:59: add-ons take 'A' for an integer unless it is a double, but this is a text\n"},
        {"of all other offsets", R"({"A": {"$offsets": [{"value": 5}], "$value": "one"}})",
         "s.json:1:46: add-ons take 'A' for an integer unless it is a double, but this is a text\n"},
    };
    for (const RefusedFile& c : cases) EXPECT_EQ(refusalOf(c.json), c.err) << c.why;
}

TEST_F(StyleFile, ThatIsMissingIsRefused) {
    EXPECT_EQ(runProgram(styleProgram({"A"})).err, "s.json: cannot be read: No such file or directory\n");
    EXPECT_EQ(runProgram(styleProgram({"A"})).status, 2);
}

TEST_F(StyleFile, ThatIsAFolderIsRefused) {
    std::filesystem::create_directory(folder() / "s.json");
    EXPECT_EQ(runProgram(styleProgram({"A"})).err, "s.json: cannot be read: Is a directory\n");
}

}  // namespace
}  // namespace vexa::e2e
