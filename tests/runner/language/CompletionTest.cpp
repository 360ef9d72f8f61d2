#include "language/Completion.h"

#include <gtest/gtest.h>

#include "formats/DescriptionFile.h"
#include "text/Joined.h"

namespace vexa::runner {
namespace {

Descriptions completedAddOn() {
    return Descriptions(parseDescription(R"({
        "addon": "STATS",
        "commands": [
            {"name": "LOAD", "kind": "command", "purpose": "p", "options": [
                {"name": "ZONES", "type": "Set", "min": 1, "max": 8, "help": "h"},
                {"name": "HEADER", "type": "Boolean", "help": "h"},
                {"name": "FILE", "type": "String", "required": true, "help": "h"}]},
            {"name": "LIST", "kind": "processor", "purpose": "p", "options": [
                {"name": "TIMES", "type": "Int64", "default": 1, "min": 1, "max": 9, "help": "h"},
                {"name": "TITLE", "type": "String", "repeatable": true, "help": "h"},
                {"name": "MODE", "type": "Choice", "values": ["fast", "slow"], "help": "h"}]}]})",
                                         "f")
                            .description);
}

// "BEGIN: TEXT|TEXT"
std::string completed(const std::string& line) {
    const Completion completion = completionAt(line, completedAddOn());
    return std::to_string(completion.begin) + ": " + joined(completion.texts, "|");
}

TEST(Completion, OffersWhatMayFollowInTheOrderOfTyping) {
    struct Case {
        const char* line;
        const char* completed;
    };
    const Case cases[] = {
        {"", "0: STATS"},
        {"st", "0: STATS"},
        {"X", "0: "},
        {"# S", "3: "},
        {"STATS ", "6: LOAD|LIST"},
        {"STATS LI", "6: LIST"},
        {"STATS X ", "8: "},
        {"OTHER L", "7: "},
        {"STATS LOAD ", "11: FILE=|ZONES=|HEADER="},
        {"STATS LOAD FILE=\"a b\" ", "22: ZONES=|HEADER="},
        {"STATS LOAD FILE=\"a b\" H", "22: HEADER="},
        {"STATS LOAD HEADER=", "18: TRUE|FALSE"},
        {"STATS LOAD HEADER=f", "18: FALSE"},
        {"STATS LOAD ZONES=", "17: [1-8]"},
        {"STATS LIST t", "11: TIMES = |TITLE = "},
        {"STATS LIST TIMES = ", "19: 1|9"},
        {"STATS LIST TIMES ", "17: "},
        {"STATS LIST TITLE = 'a' TIMES = 1 ", "33: TITLE = |MODE = "},
        {"STATS LIST MODE = 'f", "18: 'fast'"},
        {"STATS LIST NONE = ", "18: "},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        EXPECT_EQ(completed(c.line), c.completed);
    }
}

}  // namespace
}  // namespace vexa::runner
