#include "RuleNames.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kMostOffered = 3;

// How many characters to insert, delete or replace to make one of the other.
std::size_t distance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    for (std::size_t j = 0; j != row.size(); ++j) row[j] = j;
    for (std::size_t i = 0; i != from.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j != to.size(); ++j) {
            const std::size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

// What is a part of a name is as close to it as what has a slip of the pen.
std::size_t remoteness(const std::string& name, std::string_view rule) {
    const bool isPart = !name.empty() && rule.find(name) != std::string_view::npos;
    return isPart ? 1 : distance(name, rule);
}

std::vector<std::string> nearestRules(const std::string& name) {
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const standin::Rule& rule : standin::rules()) {
        const std::size_t far = remoteness(name, rule.name);
        if (far <= 1 + name.size() / 4) near.emplace_back(far, rule.name);
    }
    const auto isNearer = [](const auto& left, const auto& right) { return left.first < right.first; };
    std::stable_sort(near.begin(), near.end(), isNearer);
    std::vector<std::string> names;
    for (auto& [far, rule] : near) {
        if (names.size() != kMostOffered) names.push_back(std::move(rule));
    }
    return names;
}

// "a", "a or b", "a, b or c"
std::string alternatives(const std::vector<std::string>& names) {
    std::string text;
    for (std::size_t i = 0; i != names.size(); ++i) {
        if (i != 0) text += i + 1 == names.size() ? " or " : ", ";
        text += names[i];
    }
    return text;
}

}  // namespace

std::string noSuchRule(const std::string& name) {
    const std::vector<std::string> near = nearestRules(name);
    const std::string message = "there is no rule \"" + name + "\"; ";
    return message + (near.empty() ? "'vexa-standin explain' lists them" : "is " + alternatives(near) + " meant?");
}

}  // namespace vexa::runner
