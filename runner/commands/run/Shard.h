#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace vexa::runner {

/// One of several equal parts of a list of macro files, for runs on several machines. File number k of the list belongs
/// to shard (k - 1) mod N + 1, whatever the names are. So each file belongs to one shard, and the sizes of the shards
/// differ by at most one file.
struct Shard {
    std::size_t number = 1;  ///< from 1 to count
    std::size_t count = 1;
};

/// The message for a text that shardIn() refuses.
inline constexpr char kExpectedShard[] = "expected I/N, the shard I of N, with I from 1 to N: for example 2/20";

/// Reads a shard as users write it: `I/N`.
/// \return nothing if \p text has another form, or if I is not from 1 to N.
std::optional<Shard> shardIn(const std::string& text);

/// Returns the files of \p shard, in the order of \p files.
std::vector<std::string> filesOf(const Shard& shard, const std::vector<std::string>& files);

}  // namespace vexa::runner
