#include "text/CommandWords.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

std::string partsOf(const std::string& text) {
    const CommandWords words(text);
    std::string parts = words.word;
    for (const auto& [name, value] : words.options) parts += '|' + name + ':' + value;
    return parts;
}

TEST(CommandWords, AreAWordAndItsOptions) {
    struct Case {
        const char* why;
        const char* text;
        const char* parts;
    };
    const Case cases[] = {
        {"an empty text", "", ""},
        {"blanks around", "  LOAD \t", "LOAD"},
        {"blanks around the sign", "LOAD FILE = x N=1", "LOAD|FILE:x|N:1"},
        {"blanks in quotes", "LOAD FILE = 'a b' N=1", "LOAD|FILE:'a b'|N:1"},
        {"an escaped quote", "LOAD FILE = 'a\\' b' N=1", "LOAD|FILE:'a\\' b'|N:1"},
        {"a set", "LOAD ZONES=[1, 3] N=1", "LOAD|ZONES:[1, 3]|N:1"},
        {"a word without a value", "LOAD FAST N=1", "LOAD|FAST:|N:1"},
        {"a quote without its end", "LOAD FILE='a b", "LOAD|FILE:'a b"},
        {"a set without its end", "LOAD ZONES=[1 2", "LOAD|ZONES:[1 2"},
        {"a sign without a value", "LOAD FILE=", "LOAD|FILE:"},
    };
    for (const Case& c : cases) EXPECT_EQ(partsOf(c.text), c.parts) << c.why;
}

TEST(CommandWords, AreWrittenWithSingleBlanks) {
    EXPECT_EQ(CommandWords("  LOAD  FILE='a  b'   FAST ").text(), "LOAD FILE = 'a  b' FAST");
}

}  // namespace
}  // namespace vexa::runner
