#include "language/Suggestion.h"

#include <gtest/gtest.h>

#include "formats/DescriptionFile.h"

namespace vexa::runner {
namespace {

std::string suggested(const std::string& command) {
    return suggestionFor(command, parseDescription(R"({
        "addon": "STATS",
        "commands": [
            {"name": "MEAN", "kind": "processor", "purpose": "p", "options": [
                {"name": "TIMES", "type": "Int64", "help": "h"},
                {"name": "TITLE", "type": "String", "help": "h"}]},
            {"name": "LOAD", "kind": "command", "purpose": "p", "options": [
                {"name": "FILE", "type": "String", "help": "h"}]}]})",
                                                   "f")
                                      .description);
}

TEST(Suggestion, NamesWhatIsNearToTheFirstUnknownName) {
    struct Case {
        const char* why;
        const char* command;
        const char* suggestion;
    };
    const Case cases[] = {
        {"a command", "MEEN TIMES = 1", "MEEN: did you mean MEAN?"},
        {"an option", "MEAN TIMS = 1", "TIMS: did you mean TIMES?"},
        {"two options are as near", "MEAN TI = 1", "TI: did you mean TIMES or TITLE?"},
        {"the first of two", "MEAN TITL = 'a' TIMS = 1", "TITL: did you mean TITLE?"},
        {"the first one is not near to any", "MEAN XYZZY = 1 TIMS = 1", "TIMS: did you mean TIMES?"},
        {"the option classes take no other letter case", "LOAD file=\"a\"", "file: did you mean FILE?"},
        {"the processor takes any letter case", "MEAN times = 1", ""},
        {"what is described is refused for another reason", "MEAN TIMES = x", ""},
        {"nothing is near", "MEAN XYZZY = 1", ""},
        {"no command is near", "XYZZY", ""},
        {"an option without a name", "MEAN = 1", ""},
        {"no command at all", "", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(suggested(c.command), c.suggestion) << c.why;
}

}  // namespace
}  // namespace vexa::runner
