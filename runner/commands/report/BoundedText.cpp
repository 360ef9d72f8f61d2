#include "commands/report/BoundedText.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kDots = "...";
constexpr std::size_t kMostElements = 100;

bool continuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

// The page escapes '<' and control characters by six bytes.
std::size_t sizeInPage(char byte) {
    constexpr std::size_t kEscaped = 6;
    const auto value = static_cast<unsigned char>(byte);
    if (value < ' ' || value == 0x7f || byte == '<') return kEscaped;
    return byte == '"' || byte == '\\' ? 2 : 1;
}

}  // namespace

std::string TextBudget::cut(std::string_view text) {
    const std::size_t room = std::min(m_left, m_each);
    std::size_t size = 0;
    std::size_t at = 0;
    while (at < text.size() && size + sizeInPage(text[at]) <= room) size += sizeInPage(text[at++]);
    if (at < text.size()) {
        while (at > 0 && continuesCharacter(text[at])) --at;
    }
    m_left -= size;
    return at == text.size() ? std::string(text) : std::string(text.substr(0, at)) + kDots;
}

Json TextBudget::cutAll(const Json& json) {
    constexpr std::size_t kNumber = 8;
    constexpr std::size_t kMostKey = 60;
    if (json.is_string()) return cut(std::string_view(json.get_ref<const std::string&>()));
    m_left -= std::min(m_left, kNumber);
    if (!json.is_structured()) return json;
    Json copy = json.is_array() ? Json::array() : Json::object();
    for (const auto& [key, value] : json.items()) {
        if (copy.size() == kMostElements || (json.is_array() && m_left == 0)) break;
        if (json.is_array()) {
            copy.push_back(cutAll(value));
        } else {
            copy[TextBudget(kMostKey, kMostKey).cut(std::string_view(key))] = cutAll(value);
        }
    }
    return copy;
}

std::size_t TextTable::numberOf(const std::string& text) {
    const auto known = m_numbers.find(text);
    if (known != m_numbers.end()) return known->second;
    std::string shown = m_budget.cut(text);
    const auto [place, isNew] = m_numbers.try_emplace(shown, m_texts.size());
    if (isNew) m_texts.push_back(std::move(shown));
    return place->second;
}

}  // namespace vexa::runner
