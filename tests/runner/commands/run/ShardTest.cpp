#include "commands/run/Shard.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

const std::vector<std::string> kFiles = {"a", "b", "c", "b", "e"};

TEST(Shard, HasEveryNthFileInTheOrderOfTheList) {
    EXPECT_EQ(filesOf({1, 2}, kFiles), std::vector<std::string>({"a", "c", "e"}));
    EXPECT_EQ(filesOf({2, 2}, kFiles), std::vector<std::string>({"b", "b"})) << "the same file twice is two files";
}

TEST(Shard, IsEmptyIfThereAreMoreShardsThanFiles) { EXPECT_TRUE(filesOf({6, 6}, kFiles).empty()); }

TEST(Shard, IsOneOfSeveralThatHaveEachFileOnce) {
    for (std::size_t count = 1; count != 8; ++count) {
        std::vector<std::string> found(kFiles.size());
        for (std::size_t number = 1; number <= count; ++number) {
            const std::vector<std::string> files = filesOf({number, count}, kFiles);
            for (std::size_t i = 0; i != files.size(); ++i) found.at(number - 1 + i * count) += files[i];
        }
        EXPECT_EQ(found, kFiles) << count;
    }
}

TEST(ShardIn, ReadsNumberAndCount) {
    const auto shard = shardIn("2/20");
    ASSERT_TRUE(shard);
    EXPECT_EQ(shard->number, 2U);
    EXPECT_EQ(shard->count, 20U);
    EXPECT_TRUE(shardIn("1/1"));
    EXPECT_TRUE(shardIn("20/20")) << "the last one";
    EXPECT_TRUE(shardIn("02/20")) << "as job numbers may be written";
}

TEST(ShardIn, RefusesOtherTexts) {
    for (const char* text : {"", "/", "2", "2/", "/2", "0/2", "3/2", "0/0", "-1/2", "+1/2", " 1/2", "1/2 ", "1 /2",
                             "a/2", "1/2/3", "1/2x", "1.0/2", "1/99999999999999999999"}) {
        EXPECT_FALSE(shardIn(text)) << text;
    }
}

}  // namespace
}  // namespace vexa::runner
