#include "text/NearNames.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <string_view>

namespace vexa::runner {
namespace {

constexpr std::size_t kMostOffered = 3;

// Returns the number of edits that turn one text into the other. An edit inserts, deletes or replaces a character, or
// swaps two neighbours.
std::size_t distance(std::string_view from, std::string_view to) {
    std::vector<std::vector<std::size_t>> steps(from.size() + 1, std::vector<std::size_t>(to.size() + 1));
    for (std::size_t i = 0; i <= from.size(); ++i) {
        for (std::size_t j = 0; j <= to.size(); ++j) {
            std::size_t& least = steps[i][j];
            least = std::max(i, j);
            if (i == 0 || j == 0) continue;
            const std::size_t replaced = steps[i - 1][j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
            least = std::min({replaced, steps[i - 1][j] + 1, steps[i][j - 1] + 1});
            const bool isSwapped = i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1];
            if (isSwapped) least = std::min(least, steps[i - 2][j - 2] + 1);
        }
    }
    return steps[from.size()][to.size()];
}

void toLower(std::string& text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
}

// Returns how far a name is from the wanted one. A part of a name counts as one typing mistake.
std::size_t remoteness(std::string name, std::string meant) {
    toLower(name);
    toLower(meant);
    if (name == meant) return 0;
    const bool isPart = !name.empty() && meant.find(name) != std::string::npos;
    return isPart ? 1 : distance(name, meant);
}

}  // namespace

std::vector<std::string> nearNames(const std::string& name, const std::vector<std::string>& names) {
    std::size_t nearest = 1 + name.size() / 4;
    std::vector<std::string> near;
    for (const std::string& meant : names) {
        const std::size_t far = remoteness(name, meant);
        if (far > nearest) continue;
        if (far < nearest) near.clear();
        nearest = far;
        if (near.size() != kMostOffered) near.push_back(meant);
    }
    return near;
}

std::string alternatives(const std::vector<std::string>& names) {
    std::string text;
    for (std::size_t i = 0; i != names.size(); ++i) {
        if (i != 0) text += i + 1 == names.size() ? " or " : ", ";
        text += names[i];
    }
    return text;
}

}  // namespace vexa::runner
