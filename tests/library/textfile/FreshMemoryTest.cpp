#include "textfile/FreshMemory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

namespace vexa::vexautilutil {
namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;

std::string numbers(std::size_t size) {
    std::string text(size, '\0');
    for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>(i * 2654435761U >> 13);
    return text;
}

// A stream that reads a text.
std::unique_ptr<std::FILE, int (*)(std::FILE*)> streamOf(std::string& text) {
    return {fmemopen(text.data(), text.size(), "rb"), std::fclose};
}

TEST(FreshMemory, HasEveryByteWhereverTheTextBegins) {
    for (const std::size_t size : {std::size_t{1}, kMiB, 32 * kMiB - 1, 32 * kMiB, 33 * kMiB + 12345}) {
        for (const std::size_t offset : {std::size_t{0}, std::size_t{1}, 2 * kMiB - 1}) {
            std::string text = numbers(size);
            const std::unique_ptr<char[]> memory(new char[offset + size]);  // the exact size, for a sanitizer
            const ReadText read = readFreshText(streamOf(text).get(), memory.get() + offset, size);
            ASSERT_EQ(read.size, size);
            EXPECT_TRUE(text.compare(0, size, memory.get() + offset, size) == 0) << size << " at " << offset;
        }
    }
}

TEST(FreshMemory, SaysHowMuchOfAShorterFileCouldBeRead) {
    constexpr std::size_t kWanted = 40 * kMiB;
    const std::unique_ptr<char[]> memory(new char[kWanted]);
    for (const std::size_t size : {std::size_t{1}, 2 * kMiB, 5 * kMiB + 7, 39 * kMiB}) {
        std::string text = numbers(size);
        const ReadText read = readFreshText(streamOf(text).get(), memory.get(), kWanted);
        EXPECT_EQ(read.size, size);
    }
}

TEST(FreshMemory, HasSmallPagesForASmallText) {
    std::string text = numbers(31 * kMiB);
    const std::unique_ptr<char[]> memory(new char[text.size()]);
    EXPECT_FALSE(readFreshText(streamOf(text).get(), memory.get(), text.size()).hasLargePages);
}

}  // namespace
}  // namespace vexa::vexautilutil
