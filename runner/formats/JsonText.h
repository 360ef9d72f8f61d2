#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vexa::runner {

struct JsonMember;

/// A value of a JSON text, with its place.
struct JsonValue {
    using Array = std::vector<JsonValue>;
    using Object = std::vector<JsonMember>;

    std::size_t at = 0;  ///< the index of its first byte in the text
    /// A number without fraction and exponent is an integer; null is a null pointer.
    std::variant<std::nullptr_t, bool, std::int64_t, double, std::string, Array, Object> value;
};

/// A member of a JSON object. An object keeps all members in their order, also if two have the same name.
struct JsonMember {
    std::size_t at = 0;  ///< the index of the first byte of its name, in the text
    std::string name;
    JsonValue value;
};

/// A text is no JSON. The message is the reason.
struct JsonError : std::runtime_error {
    JsonError(std::size_t index, const std::string& reason) : std::runtime_error(reason), at(index) {}

    std::size_t at;  ///< the index of the byte in the text
};

/// Reads a JSON text, which is UTF-8.
/// \throws JsonError also for an integer of more than 64 bits, and for more than 16 levels of nesting.
JsonValue parseJson(const std::string& text);

/// The place of the byte with the index \p at in \p text: "LINE:COLUMN", both counted from 1. Columns count bytes.
std::string placeIn(std::string_view text, std::size_t at);

}  // namespace vexa::runner
