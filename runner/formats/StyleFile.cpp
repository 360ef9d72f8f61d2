#include "formats/StyleFile.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <map>
#include <set>
#include <string_view>
#include <system_error>

#include "formats/JsonText.h"
#include "system/files/StandardStreams.h"
#include "system/files/WholeFile.h"
#include "terminal/Console.h"
#include "text/Joined.h"
#include "text/ShortText.h"
#include "vexa/InvalidArgumentException.h"
#include "vexa/toolbox/Set.h"
#include "vexautilutil/StyleValue.h"

namespace vexa::runner {
namespace {

using Path = std::vector<std::string>;
using Offsets = std::pair<long, long>;
using Members = std::map<std::string_view, const JsonValue*>;

constexpr char SPECIAL_token = '$';
constexpr const char* DOUBLE_name = "$double";
constexpr const char* SET_name = "$set";
constexpr const char* OFFSETS_name = "$offsets";
constexpr const char* VALUE_name = "$value";

std::string quoted(std::string_view text) { return '\'' + shortText(text) + '\''; }

std::string inUpperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return text;
}

bool holdsNul(const std::string& text) { return text.find('\0') != std::string::npos; }

bool isSpecial(const JsonMember& member) { return !member.name.empty() && member.name.front() == SPECIAL_token; }

template <class Value>
const Value& required(const JsonValue& value, const char* expected) {
    if (const auto* const held = std::get_if<Value>(&value.value)) return *held;
    throw JsonError(value.at, std::string("expected ") + expected);
}

// ---- The kinds of values

// In the order of the types of standin::StyleValue.
constexpr std::array<const char*, 4> kKindNames = {"a double", "an integer", "a text", "a set"};
enum Kind_e : std::size_t { Double, Integer, Text, IndexSet };

// ---- Values

// The members of `object` by name. Refuses a name that is not among `names`, or that is given twice.
Members membersOf(const JsonValue::Object& object, std::initializer_list<const char*> names) {
    Members members;
    for (const JsonMember& member : object) {
        if (std::find(names.begin(), names.end(), member.name) == names.end()) {
            throw JsonError(member.at, quoted(member.name) + " is none of '" + joined(names, "', '") + '\'');
        }
        if (!members.emplace(member.name, &member.value).second) {
            throw JsonError(member.at, quoted(member.name) + " is given twice");
        }
    }
    return members;
}

toolbox::Set setOf(const std::string& text, std::size_t at) {
    try {
        toolbox::Set set;
        set.assign(text);
        return set;
    } catch (const InvalidArgumentException& refusal) {
        throw JsonError(at, refusal.what());
    }
}

// The text of a set for an item of an array of indices; empty for a text without a member.
std::string membersOf(const JsonValue& item) {
    const auto* const index = std::get_if<std::int64_t>(&item.value);
    if (index != nullptr && *index >= 0) return std::to_string(*index);
    const auto& range = required<std::string>(item, "an index from 0 up, or a range such as \"5-7\"");
    return range.find_first_not_of(" \t") == std::string::npos ? "" : range;
}

// The items from \p begin up to \p end as the text of one set.
std::string setTextOf(const JsonValue* begin, const JsonValue* end) {
    std::string text;
    for (const JsonValue* item = begin; item != end; ++item) {
        const std::string members = membersOf(*item);
        if (!members.empty()) text += (text.empty() ? "" : ",") + members;
    }
    return '[' + text + ']';
}

bool isSetText(const std::string& text) {
    try {
        setOf(text, 0);
        return true;
    } catch (const JsonError&) {
        return false;
    }
}

// Reads all items as one text: a set reads them in any order in linear time, and limits the number of all members.
toolbox::Set setOf(const JsonValue::Array& items) {
    const JsonValue* const begin = items.data();
    const std::string text = setTextOf(begin, begin + items.size());
    try {
        return setOf(text, 0);
    } catch (const JsonError& refusal) {
        // Finds the first item that is wrong, or one too many, by bisection: reading each item separately is slow.
        const JsonValue* const wrong =
            std::partition_point(begin, begin + items.size() - 1,
                                 [begin](const JsonValue& item) { return isSetText(setTextOf(begin, &item + 1)); });
        setOf('[' + membersOf(*wrong) + ']', wrong->at);
        throw JsonError(wrong->at, refusal.what());
    }
}

double doubleOf(const JsonValue& value) {
    if (const auto* const number = std::get_if<double>(&value.value)) return *number;
    return static_cast<double>(required<std::int64_t>(value, "a number"));
}

standin::StyleValue markedValueOf(const JsonValue::Object& object, std::size_t at) {
    const Members members = membersOf(object, {DOUBLE_name, SET_name});
    if (members.size() != 1) throw JsonError(at, "expected either '$double' or '$set'");
    const auto& [name, value] = *members.begin();
    if (name == DOUBLE_name) return doubleOf(*value);
    return setOf(required<std::string>(*value, "a set as text, such as \"[1-3,5]\""), value->at);
}

standin::StyleValue valueOf(const JsonValue& value) {
    if (const auto* const number = std::get_if<double>(&value.value)) return *number;
    if (const auto* const integer = std::get_if<std::int64_t>(&value.value)) return *integer;
    if (const auto* const items = std::get_if<JsonValue::Array>(&value.value)) return setOf(*items);
    if (const auto* const object = std::get_if<JsonValue::Object>(&value.value))
        return markedValueOf(*object, value.at);
    const auto& text = required<std::string>(value, "a number, a text, a set or keywords");
    if (holdsNul(text)) throw JsonError(value.at, "a text cannot hold a NUL");
    return text;
}

// ---- The tree

class SettingCollector {
public:
    SettingCollector() { m_host.setKeepsCalls(false); }

    std::vector<StyleSetting> collect(const JsonValue& root) {
        takeKeywords(required<JsonValue::Object>(root, "an object of keywords"));
        return std::move(m_settings);
    }

private:
    void takeKeywords(const JsonValue::Object& keywords) {
        std::set<std::string> known;
        for (const JsonMember& member : keywords) {
            checkKeyword(member);
            if (!known.insert(inUpperCase(member.name)).second) {
                throw JsonError(member.at,
                                quoted(member.name) + " is given twice; the case of letters does not matter");
            }
            m_path.push_back(member.name);
            takeSetting(member.value);
            m_path.pop_back();
        }
    }

    void checkKeyword(const JsonMember& keyword) const {
        if (keyword.name.empty()) throw JsonError(keyword.at, "a keyword is empty");
        if (isSpecial(keyword)) throw JsonError(keyword.at, quoted(keyword.name) + " cannot stand among keywords");
        if (holdsNul(keyword.name)) throw JsonError(keyword.at, "a keyword cannot hold a NUL");
        if (m_path.size() == kMostStyleKeywords) {
            throw JsonError(keyword.at, quoted(keyword.name) + " is the seventh keyword of a path; six are the most");
        }
    }

    void takeSetting(const JsonValue& value) {
        const auto* const object = std::get_if<JsonValue::Object>(&value.value);
        if (object == nullptr) return add(std::nullopt, value);
        if (object->empty()) throw JsonError(value.at, "expected keywords or a value, but there is nothing");
        if (std::none_of(object->begin(), object->end(), isSpecial)) return takeKeywords(*object);
        const Members members = membersOf(*object, {DOUBLE_name, SET_name, OFFSETS_name, VALUE_name});
        if (members.count(OFFSETS_name) == 0 && members.count(VALUE_name) == 0) return add(std::nullopt, value);
        takeOffsets(membersOf(*object, {OFFSETS_name, VALUE_name}), value.at);
    }

    void takeOffsets(Members members, std::size_t at) {
        const JsonValue* const list = members[OFFSETS_name];
        if (list == nullptr) throw JsonError(at, "expected '$offsets' with the '$value'");
        constexpr const char* kExpected = "an array of values with offsets";
        const auto& entries = required<JsonValue::Array>(*list, kExpected);
        if (entries.empty()) throw JsonError(list->at, std::string("expected ") + kExpected);
        if (const JsonValue* const otherwise = members[VALUE_name]) add(std::nullopt, *otherwise);
        std::set<Offsets> known;
        for (const JsonValue& entry : entries) takeEntry(entry, known);
    }

    void takeEntry(const JsonValue& entry, std::set<Offsets>& known) {
        const auto& object = required<JsonValue::Object>(entry, "an object of 'offset1', 'offset2' and 'value'");
        Members members = membersOf(object, {"offset1", "offset2", "value"});
        const JsonValue* const value = members["value"];
        if (value == nullptr) throw JsonError(entry.at, "expected a 'value' for the offsets");
        const Offsets offsets = {offsetOf(members["offset1"]), offsetOf(members["offset2"])};
        if (!known.insert(offsets).second) throw JsonError(entry.at, "these offsets are given twice");
        add(offsets, *value);
    }

    static long offsetOf(const JsonValue* offset) {
        return offset == nullptr ? 0 : static_cast<long>(required<std::int64_t>(*offset, "an integer"));
    }

    void add(const std::optional<Offsets>& offsets, const JsonValue& value) {
        StyleSetting setting{m_path, offsets, valueOf(value)};
        const std::size_t kind = setting.value.index();
        const std::size_t expected = kind == Double ? Double : expectedKind();
        if (kind != expected) {
            throw JsonError(value.at, "add-ons take " + quoted(m_path.back()) + " for " + kKindNames[expected] +
                                          " unless it is a double, but this is " + kKindNames[kind]);
        }
        m_settings.push_back(std::move(setting));
    }

    // The kind that the library, and so an add-on, expects for a value that is no double. Asks with the value 0, which
    // the library does not follow as an address.
    Kind_e expectedKind() {
        m_host.setStyle(m_path, std::int64_t{0});
        vexautilutil::ResultType_e type{};
        GetValueReturnCode_e code{};
        std::string ignored;
        vexautilutil::getValueAsString(m_path, 0, 0, type, code, ignored);
        switch (type) {
            case vexautilutil::ResultType_Set: return IndexSet;
            case vexautilutil::ResultType_String: return Text;
            default: return Integer;
        }
    }

    Path m_path;  // of the value that is taken
    std::vector<StyleSetting> m_settings;
    standin::Host m_host;  // asked for the kinds of values
};

// ---- The file

}  // namespace

std::vector<StyleSetting> parseStyles(const std::string& text) { return SettingCollector().collect(parseJson(text)); }

std::optional<std::vector<StyleSetting>> readStyles(const std::string& file) {
    const std::string name = isStandardInput(file) ? kStandardInputName : file;
    std::string text;
    try {
        text = readInput(file);
        return parseStyles(text);
    } catch (const JsonError& error) {
        tell(name + ':' + placeIn(text, error.at), error.what());
    } catch (const std::system_error& error) {
        tell(name, "cannot be read: " + error.code().message());
    }
    return std::nullopt;
}

void giveStyles(standin::Host& host, const std::vector<StyleSetting>& settings) {
    for (const StyleSetting& setting : settings) {
        if (setting.offsets) {
            host.setStyle(setting.path, setting.offsets->first, setting.offsets->second, setting.value);
        } else {
            host.setStyle(setting.path, setting.value);
        }
    }
}

bool loadStyles(standin::Host& host, const std::string& file) {
    const auto settings = readStyles(file);
    if (settings) giveStyles(host, *settings);
    return settings.has_value();
}

}  // namespace vexa::runner
