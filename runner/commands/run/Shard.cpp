#include "commands/run/Shard.h"

#include <charconv>
#include <string_view>
#include <system_error>

namespace vexa::runner {
namespace {

std::optional<std::size_t> numberIn(std::string_view text) {
    std::size_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

}  // namespace

std::optional<Shard> shardIn(const std::string& text) {
    const std::size_t slash = text.find('/');
    if (slash == std::string::npos) return std::nullopt;
    const auto number = numberIn(std::string_view(text).substr(0, slash));
    const auto count = numberIn(std::string_view(text).substr(slash + 1));
    if (!number || !count || *number < 1 || *number > *count) return std::nullopt;
    return Shard{*number, *count};
}

std::vector<std::string> filesOf(const Shard& shard, const std::vector<std::string>& files) {
    std::vector<std::string> chosen;
    for (std::size_t i = 0; i != files.size(); ++i) {
        if (i % shard.count + 1 == shard.number) chosen.push_back(files[i]);
    }
    return chosen;
}

}  // namespace vexa::runner
