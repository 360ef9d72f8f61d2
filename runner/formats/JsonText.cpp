#include "formats/JsonText.h"

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "text/ShortText.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kMostNested = 16;
constexpr std::string_view kBetweenTokens = " \t\r\n:,\xEF\xBB\xBF";  // a byte-order mark, too
constexpr const char* kIntegerTooLarge = "the integer needs more than 64 bits; with .0 after it, it is a double";

// The parser's message without its number and its place: "[json.number] parse error at line 1, column 2: REASON".
std::string reasonOf(std::string_view message) {
    constexpr std::string_view kNumberEnd = "] ";
    constexpr std::string_view kPlace = "parse error at ";
    constexpr std::string_view kPlaceEnd = ": ";
    message.remove_prefix(message.find(kNumberEnd) + kNumberEnd.size());
    if (message.substr(0, kPlace.size()) == kPlace) message.remove_prefix(message.find(kPlaceEnd) + kPlaceEnd.size());
    return shortText(message);  // it quotes the token
}

// Builds values. The parser calls it right after each token.
class ValueBuilder final : public nlohmann::json_sax<nlohmann::json> {
public:
    // The parser reads `text` from `stream`.
    ValueBuilder(std::string_view text, std::istream& stream) : m_text(text), m_stream(stream) {}

    JsonValue take() { return std::move(m_root); }

    bool null() override { return add(nullptr); }
    bool boolean(bool value) override { return add(value); }
    bool string(string_t& value) override { return add(std::move(value)); }
    bool binary(binary_t&) override { return false; }  // there is none in a text

    bool number_integer(number_integer_t value) override { return add(value); }

    bool number_unsigned(number_unsigned_t value) override {
        if (value > number_unsigned_t{std::numeric_limits<std::int64_t>::max()}) {
            throw JsonError(takeToken(), kIntegerTooLarge);
        }
        return add(static_cast<std::int64_t>(value));
    }

    bool number_float(number_float_t value, const string_t& token) override {
        const bool isInteger = token.find_first_not_of("-0123456789") == std::string::npos;
        if (isInteger) throw JsonError(takeToken(), kIntegerTooLarge);
        return add(value);
    }

    bool start_object(std::size_t) override { return open(JsonValue::Object()); }
    bool start_array(std::size_t) override { return open(JsonValue::Array()); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(string_t& name) override {
        auto& members = std::get<JsonValue::Object>(m_open.back()->value);
        members.push_back({takeToken(), std::move(name), {}});
        return true;
    }

    bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception& error) override {
        const std::size_t lastByte = std::max<std::size_t>(consumed(), 1) - 1;
        throw JsonError(std::min(takeToken(), lastByte), reasonOf(error.what()));
    }

private:
    // How much the parser has read: up to the end of the last token, or one byte more.
    std::size_t consumed() const {
        return static_cast<std::size_t>(m_stream.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in));
    }

    // The start of the current token: it is the first one after the end of the last token.
    std::size_t takeToken() {
        const std::size_t begin = m_text.find_first_not_of(kBetweenTokens, m_end);
        m_end = consumed();
        return begin;
    }

    template <class Value>
    bool add(Value value) {
        JsonValue& added = place();
        added.at = takeToken();
        added.value = std::move(value);
        return true;
    }

    // Where the next value goes.
    JsonValue& place() {
        if (m_open.empty()) return m_root;
        if (auto* const members = std::get_if<JsonValue::Object>(&m_open.back()->value)) return members->back().value;
        return std::get<JsonValue::Array>(m_open.back()->value).emplace_back();
    }

    template <class Container>
    bool open(Container container) {
        if (m_open.size() == kMostNested) throw JsonError(takeToken(), "nested too deeply");
        JsonValue& opened = place();
        opened = {takeToken(), std::move(container)};
        m_open.push_back(&opened);
        return true;
    }

    bool close() {
        m_open.pop_back();
        m_end = consumed();
        return true;
    }

    std::string_view m_text;
    std::istream& m_stream;
    std::size_t m_end = 0;
    JsonValue m_root;
    std::vector<JsonValue*> m_open;  // the open arrays and objects, the outermost first
};

}  // namespace

JsonValue parseJson(const std::string& text) {
    std::istringstream stream(text);
    ValueBuilder builder(text, stream);
    nlohmann::json::sax_parse(stream, &builder);
    return builder.take();
}

std::string placeIn(std::string_view text, std::size_t at) {
    const std::string_view before = text.substr(0, at);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t column = before.size() - (before.rfind('\n') + 1) + 1;
    return std::to_string(line) + ':' + std::to_string(column);
}

}  // namespace vexa::runner
