#include "textfile/LineSplitter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>

#include "ByteLoopSplit.h"

namespace vexa::vexautilutil {
namespace {

// Splits copies of a text with both functions. Returns an empty text if the results are equal.
std::string difference(const std::string& text, std::size_t alignment = 0) {
    std::string plain = text;
    std::vector<uint64_t> plainOffsets;
    splitByteByByte(plain.data(), plainOffsets);

    const std::size_t before = text.size() + alignment;  // filled with 'x', so that no NUL is before the text
    const std::unique_ptr<char[]> memory(new char[before + text.size() + 1]);  // the exact size, for a sanitizer
    std::memset(memory.get(), 'x', before);
    char* const fast = memory.get() + before;
    std::memcpy(fast, text.c_str(), text.size() + 1);
    std::vector<uint64_t> offsets;
    splitLines(fast, text.size(), offsets);

    if (offsets != plainOffsets) return "the lines differ";
    return std::memcmp(fast, plain.c_str(), text.size() + 1) == 0 ? "" : "the bytes differ";
}

std::string randomText(std::mt19937& random, const std::string& alphabet, std::size_t size) {
    std::string text(size, '\0');
    for (char& c : text) c = alphabet[random() % alphabet.size()];
    return text;
}

TEST(LineSplitter, AgreesWithTheByteLoopOnRandomTexts) {
    const std::string alphabets[] = {"\n\r",
                                     "\n\ra",
                                     "abcdefgh\n",
                                     "abcdefghijklmnopqrstuvwxyz 0123456789\r\n",
                                     std::string("\0\n\ra", 4),
                                     std::string("abcdefghijklmnopqrstuvwxyz\n\r\0", 29)};
    std::mt19937 random(7);
    for (int i = 0; i < 200000; ++i) {
        const std::string text = randomText(random, alphabets[random() % std::size(alphabets)], random() % 300);
        ASSERT_EQ(difference(text, random() % 64), "") << "text " << i;
    }
}

TEST(LineSplitter, AgreesWhereverOneSpecialByteStands) {
    for (const char special : {'\n', '\r', '\0', '\x8a', '\x0b'}) {
        for (std::size_t at = 0; at < 200; ++at) {
            std::string text(200, 'x');
            text[at] = special;
            ASSERT_EQ(difference(text), "") << static_cast<int>(special) << " at " << at;
        }
    }
}

TEST(LineSplitter, AgreesAtEveryAlignmentAndSize) {
    std::mt19937 random(11);
    for (std::size_t alignment = 0; alignment < 64; ++alignment) {
        for (std::size_t size = 0; size < 200; ++size) {
            ASSERT_EQ(difference(randomText(random, "ab\n\r", size), alignment), "") << alignment << ", " << size;
        }
    }
}

TEST(LineSplitter, AgreesOnEveryBytePattern) {
    std::mt19937 random(13);
    for (int i = 0; i < 2000; ++i) {
        std::string text(500, '\0');
        for (char& c : text) c = static_cast<char>(random() % 255 + 1);
        ASSERT_EQ(difference(text), "") << "text " << i;
    }
}

TEST(LineSplitter, AgreesWhenEveryByteIsALine) {
    for (const std::size_t lines : {511U, 512U, 513U, 1023U, 1024U, 1025U, 300000U}) {
        EXPECT_EQ(difference(std::string(lines, '\n')), "") << lines;
        EXPECT_EQ(difference(std::string(lines, '\n') + "x"), "") << lines;
    }
}

TEST(LineSplitter, AgreesWhenTheSamplesMisleadAboutTheNumberOfLines) {
    // All lines are outside of the sampled blocks.
    std::string sparse;
    while (sparse.size() < 3000000) sparse += std::string(20000, 'x') + std::string(20000, '\n');
    EXPECT_EQ(difference(sparse), "");
    EXPECT_EQ(difference(std::string(2000000, 'x') + std::string(1000000, '\n')), "");
    EXPECT_EQ(difference(std::string(1000000, '\n') + std::string(2000000, 'x')), "");
}

TEST(LineSplitter, AgreesWhenTheTextIsAsLargeAsTheSamples) {
    for (const std::size_t size : {262143U, 262144U, 262145U}) {
        std::string text;
        while (text.size() < size) text += "some words\r\n";
        text.resize(size);
        EXPECT_EQ(difference(text), "") << size;
    }
}

TEST(LineSplitter, AgreesOnATableThatIsHandedOutInLargePages) {
    std::string text;
    while (text.size() < 12000000) text += "7\n\n";  // 8 million lines
    EXPECT_EQ(difference(text), "");
}

TEST(LineSplitter, AgreesOnRealFiles) {
    int files = 0;
    for (const char* folder : {VEXA_SOURCE_DIR "/library", VEXA_SOURCE_DIR "/examples", VEXA_SOURCE_DIR "/tests"}) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            if (!entry.is_regular_file()) continue;
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string text{std::istreambuf_iterator<char>(file), {}};
            EXPECT_EQ(difference(text), "") << entry.path();
            ++files;
        }
    }
    EXPECT_GT(files, 50);
}

TEST(LineSplitter, LeavesWhatIsBehindANulAlone) {
    std::string text("a\r\n\0b\r\nc", 9);
    std::vector<uint64_t> offsets;
    splitLines(text.data(), text.size(), offsets);
    EXPECT_EQ(text, std::string("a\0\0\0b\r\nc", 9));
    EXPECT_EQ(offsets, std::vector<uint64_t>{0});
}

TEST(LineSplitter, MakesRoomForTheLinesAtOnceAndForFewMore) {
    const struct {
        const char* why;
        std::size_t lines;
        std::size_t most;
    } cases[] = {{"one line", 1, 2},
                 {"a small text is counted", 1000, 1001},
                 {"nearly the largest that is counted", 26214, 26215},
                 {"the smallest that is estimated, twice as large", 26215, 26215 * 17 / 8 + 1},
                 {"a large one", 100000, 112500},
                 {"a larger one", 400000, 450000}};
    for (const auto& c : cases) {
        std::string text;
        while (text.size() < 10 * c.lines) text += "ten bytes\n";
        std::vector<uint64_t> offsets;
        splitLines(text.data(), text.size(), offsets);
        EXPECT_EQ(offsets.size(), c.lines) << c.why;
        EXPECT_GT(offsets.capacity(), c.lines) << c.why;
        EXPECT_LE(offsets.capacity(), c.most) << c.why;
    }
}

TEST(LineSplitter, CountsTheLinesOfATextAsLargeAsTheSamples) {
    std::string text;
    while (text.size() < 262144) text += "8 bytes\n";
    std::vector<uint64_t> offsets;
    splitLines(text.data(), text.size(), offsets);
    EXPECT_EQ(offsets.capacity(), 32768u + 1) << "room for each, and for one without its end";
}

TEST(LineSplitter, AppendsToTheOffsetsThere) {
    char text[] = "a\nb";
    std::vector<uint64_t> offsets{17};
    splitLines(text, 3, offsets);
    EXPECT_EQ(offsets, (std::vector<uint64_t>{17, 0, 2}));
}

}  // namespace
}  // namespace vexa::vexautilutil
