#include "text/ShellWord.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>

namespace vexa::runner {
namespace {

// What bash passes on when \p word is a word of its command line.
std::string readBack(const std::string& word) {
    std::string script;  // the arguments of sh -c: bash is given the script on its own line
    for (const char c : "printf %s " + shellWord(word)) script += c == '\'' ? "'\\''" : std::string(1, c);
    const auto close = [](FILE* pipe) { pclose(pipe); };
    const std::unique_ptr<FILE, decltype(close)> pipe(popen(("bash -c '" + script + '\'').c_str(), "r"), close);
    std::array<char, 256> bytes{};
    return {bytes.data(), std::fread(bytes.data(), 1, bytes.size(), pipe.get())};
}

TEST(ShellWord, LeavesAPlainWordAsItIs) { EXPECT_EQ(shellWord("/a/b-c_1.so:x=@%+,"), "/a/b-c_1.so:x=@%+,"); }

TEST(ShellWord, QuotesWhatAShellWouldRead) {
    EXPECT_EQ(shellWord("a b"), "'a b'");
    EXPECT_EQ(shellWord("$HOME"), "'$HOME'");
    EXPECT_EQ(shellWord(""), "''");
}

TEST(ShellWord, EscapesWhatCannotBePrinted) { EXPECT_EQ(shellWord("a\nb"), "$'a\\nb'"); }

TEST(ShellWord, IsReadBackByBash) {
    for (const char* word :
         {"", "a b", "it's", "a\\b", "\n's \\t", "\033[2J", "\xFF\xFE", "Größe", "*?[x]", "!x", "\t"}) {
        EXPECT_EQ(readBack(word), word) << shellWord(word);
    }
}

}  // namespace
}  // namespace vexa::runner
