#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vexa::runner {

/// Cuts texts so that all of them together fit into a page.
///
/// Sizes are those in the page's script, where some characters take six bytes.
class TextBudget {
public:
    /// \param total the bytes for all texts
    /// \param each  the bytes for each text
    TextBudget(std::size_t total, std::size_t each) : m_left(total), m_each(each) {}

    /// Returns \p text, or its start and three dots. After the total is used up, returns three dots.
    std::string cut(std::string_view text);

    /// Cuts all texts in \p json, and its lists after a hundred elements.
    nlohmann::ordered_json cutAll(const nlohmann::ordered_json& json);

private:
    std::size_t m_left;
    std::size_t m_each;
};

/// Gives each text a number, and stores each text once, cut to a budget.
class TextTable {
public:
    explicit TextTable(TextBudget budget) : m_budget(budget) {}

    std::size_t numberOf(const std::string& text);
    const std::vector<std::string>& texts() const { return m_texts; }

private:
    TextBudget m_budget;
    std::unordered_map<std::string, std::size_t> m_numbers;
    std::vector<std::string> m_texts;
};

}  // namespace vexa::runner
