#include "commands/run/Shard.h"

#include <string_view>

#include "text/WholeNumber.h"

namespace vexa::runner {
std::optional<Shard> shardIn(const std::string& text) {
    const std::size_t slash = text.find('/');
    if (slash == std::string::npos) return std::nullopt;
    const auto number = wholeNumberIn(std::string_view(text).substr(0, slash));
    const auto count = wholeNumberIn(std::string_view(text).substr(slash + 1));
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
