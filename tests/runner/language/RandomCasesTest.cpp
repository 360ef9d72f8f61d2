#include "language/RandomCases.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "formats/DescriptionFile.h"
#include "language/LineCheck.h"

namespace vexa::runner {
namespace {

constexpr int kMany = 20000;

const AddOnDescription& described() {
    static const AddOnDescription addOn = parseDescription(R"({"addon": "A", "commands": [
        {"name": "READ", "kind": "command", "purpose": "p", "options": [
            {"name": "FILE", "type": "String", "required": true, "mayBeEmpty": false, "help": "h"},
            {"name": "ROWS", "type": "UInt64", "default": 5, "help": "h"},
            {"name": "HEADER", "type": "Boolean", "help": "h"},
            {"name": "ZONES", "type": "Set", "min": 2, "max": 4, "mayBeEmpty": false, "help": "h"}],
         "examples": ["READ FILE=\"a b\" ROWS=3", "READ FILE='c'"]},
        {"name": "SHOW", "kind": "processor", "purpose": "p", "options": [
            {"name": "TIMES", "type": "Int64", "min": 1, "max": 9, "help": "h"},
            {"name": "STEP", "type": "Int32", "help": "h"},
            {"name": "SCALE", "type": "Double", "min": -0.5, "max": 0.75, "help": "h"},
            {"name": "LOUD", "type": "Boolean", "help": "h"},
            {"name": "ALL", "type": "Set", "help": "h"},
            {"name": "MODE", "type": "Choice", "values": ["fast", "it's"], "help": "h"},
            {"name": "TITLE", "type": "String", "required": true, "help": "h"}],
         "examples": ["SHOW TITLE = 'x'"]},
        {"name": "CLEAR", "kind": "processor", "purpose": "p"}]})",
                                                           "f")
                                              .description;
    return addOn;
}

TEST(RandomCases, AreWrongExactlyIfTheySaySo) {
    RandomCases cases(described(), 7);
    for (int i = 0; i != kMany; ++i) {
        const RandomCase random = cases.next();
        std::vector<std::string> errors;
        for (const Diagnostic& found : checkCommand(random.text, described())) {
            if (found.severity == standin::Severity_e::Error) errors.push_back(found.message);
        }
        if (random.mistake.empty()) {
            ASSERT_TRUE(errors.empty()) << random.text << ": " << errors.front();
        } else {
            ASSERT_FALSE(errors.empty()) << random.text << " (" << random.mistake << ')';
        }
    }
}

TEST(RandomCases, HaveEachMistakeAndAllLimits) {
    std::set<std::string> mistakes;
    std::set<std::string> words;
    RandomCases cases(described(), 8);
    int wrong = 0;
    for (int i = 0; i != kMany; ++i) {
        const RandomCase random = cases.next();
        if (!random.mistake.empty()) ++wrong;
        mistakes.insert(random.mistake);
        std::string text = random.text;
        for (std::size_t end = 0; end != std::string::npos; text.erase(0, end + 1)) {
            end = text.find(' ');
            words.insert(text.substr(0, end));
            if (end == std::string::npos) break;
        }
    }
    EXPECT_NEAR(wrong, kMany / 4, kMany / 40);
    for (const char* const mistake : {"without the required option FILE", "with an option that is not described",
                                      "TIMES above its maximum", "TIMES below its minimum", "ZONES that is empty",
                                      "ZONES above its maximum", "MODE with a value that is not in the list",
                                      "LOUD with a value that is no Boolean", "TITLE with a value that is no String"}) {
        EXPECT_EQ(mistakes.count(mistake), 1U) << mistake;
    }
    for (const char* const word : {"1", "9", "-0.5", "0.75", "2147483647", "-2147483648", "ROWS=18446744073709551615",
                                   "'it\\'s'", "'fast'", "ZONES=[2-4:2]", "CLEAR", "cLEAR", "READ"}) {
        EXPECT_EQ(words.count(word), 1U) << word;
    }
    EXPECT_EQ(words.count("rEAD"), 0U);  // option classes may expect the letter case of the description
}

TEST(RandomCases, HaveOnlyTheTextsOfExamples) {
    RandomCases cases(described(), 9);
    std::map<std::string, int> texts;
    for (int i = 0; i != kMany; ++i) {
        const std::string text = cases.next().text;
        const std::size_t file = text.find("FILE=");
        if (file != std::string::npos) ++texts[text.substr(file + 5, text.find_first_of("\"'", file + 6) - file - 4)];
    }
    std::string found;
    for (const auto& [text, count] : texts) {
        if (text.front() == '"' || text.front() == '\'') found += text + ' ';
    }
    EXPECT_EQ(found, "\"\" \"a b\" 'c' ");
}

TEST(RandomCases, AreTheSameForTheSameSeed) {
    RandomCases one(described(), 5);
    RandomCases same(described(), 5);
    RandomCases other(described(), 6);
    bool isOther = false;
    for (int i = 0; i != 100; ++i) {
        const std::string text = one.next().text;
        EXPECT_EQ(text, same.next().text);
        isOther = isOther || text != other.next().text;
    }
    EXPECT_TRUE(isOther);
}

}  // namespace
}  // namespace vexa::runner
