#include "formats/StyleFile.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>
#include <vector>

#include "formats/JsonText.h"
#include "system/files/StandardStreams.h"
#include "system/files/WholeFile.h"
#include "terminal/Console.h"
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

[[noreturn]] void refuse(std::size_t at, const std::string& reason) { throw JsonError(at, reason); }

std::string quoted(std::string_view text) { return '\'' + shortText(text) + '\''; }

std::string inUpperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return text;
}

bool holdsNul(const std::string& text) { return text.find('\0') != std::string::npos; }

bool isSpecial(const JsonMember& member) { return !member.name.empty() && member.name.front() == SPECIAL_token; }

// ---- The kinds of values

// In the order of the types of standin::StyleValue.
constexpr std::array<const char*, 4> kKindNames = {"a double", "an integer", "a text", "a set"};
enum Kind_e : std::size_t { Double, Integer, Text, IndexSet };

Kind_e kindOf(const standin::StyleValue& value) { return static_cast<Kind_e>(value.index()); }

// Finds the kind that the library, and so an add-on, expects for a value that is no double. It asks with the value 0,
// which the library does not follow as an address.
class KindQuery {
public:
    KindQuery() { m_host.setKeepsCalls(false); }

    Kind_e operator()(Path path) {
        m_host.setStyle(path, std::int64_t{0});
        vexautilutil::ResultType_e type{};
        GetValueReturnCode_e code{};
        std::string ignored;
        vexautilutil::getValueAsString(path, 0, 0, type, code, ignored);
        switch (type) {
            case vexautilutil::ResultType_Set: return IndexSet;
            case vexautilutil::ResultType_String: return Text;
            default: return Integer;
        }
    }

private:
    standin::Host m_host;
};

// ---- Values

// The members of `object` by name. Refuses a name that is not among `names`, or that is given twice.
Members membersOf(const JsonValue::Object& object, std::initializer_list<const char*> names) {
    Members members;
    for (const JsonMember& member : object) {
        if (std::find(names.begin(), names.end(), member.name) == names.end()) {
            std::string known;
            for (const char* name : names) known += (known.empty() ? "" : ", ") + quoted(name);
            refuse(member.at, quoted(member.name) + " is none of " + known);
        }
        if (!members.emplace(member.name, &member.value).second) {
            refuse(member.at, quoted(member.name) + " is given twice");
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
        refuse(at, refusal.what());
    }
}

// The text of a set for an item of an array of indices; empty for a text without a member.
std::string membersOf(const JsonValue& item) {
    const auto* const index = std::get_if<std::int64_t>(&item.value);
    const auto* const range = std::get_if<std::string>(&item.value);
    if (index != nullptr && *index >= 0) return std::to_string(*index);
    if (range == nullptr) refuse(item.at, "expected an index from 0 up, or a range such as \"5-7\"");
    return range->find_first_not_of(" \t") == std::string::npos ? "" : *range;
}

// The items from \p begin up to \p end as the text of one set.
std::string setTextOf(const JsonValue* begin, const JsonValue* end) {
    std::string text = "[";
    for (const JsonValue* item = begin; item != end; ++item) {
        const std::string members = membersOf(*item);
        if (!members.empty() && text.size() > 1) text += ',';
        text += members;
    }
    return text + ']';
}

bool isSetText(const std::string& text) {
    try {
        toolbox::Set().assign(text);
        return true;
    } catch (const InvalidArgumentException&) {
        return false;
    }
}

// Reads all items as one text: a set reads them in any order in linear time, and limits the number of all members.
toolbox::Set setOf(const JsonValue::Array& items) {
    toolbox::Set set;
    const JsonValue* const begin = items.data();
    const std::string text = setTextOf(begin, begin + items.size());
    try {
        set.assign(text);
    } catch (const InvalidArgumentException& refusal) {
        // Finds the first item that is wrong, or one too many, by bisection: reading each item separately is slow.
        const JsonValue* const wrong =
            std::partition_point(begin, begin + items.size() - 1,
                                 [begin](const JsonValue& item) { return isSetText(setTextOf(begin, &item + 1)); });
        setOf('[' + membersOf(*wrong) + ']', wrong->at);
        refuse(wrong->at, refusal.what());
    }
    return set;
}

double doubleOf(const JsonValue& value) {
    if (const auto* const number = std::get_if<double>(&value.value)) return *number;
    if (const auto* const integer = std::get_if<std::int64_t>(&value.value)) return static_cast<double>(*integer);
    refuse(value.at, "expected a number");
}

standin::StyleValue markedValueOf(const JsonValue::Object& object, std::size_t at) {
    const Members members = membersOf(object, {DOUBLE_name, SET_name});
    if (members.size() != 1) refuse(at, "expected either '$double' or '$set'");
    const auto& [name, value] = *members.begin();
    if (name == DOUBLE_name) return doubleOf(*value);
    const auto* const text = std::get_if<std::string>(&value->value);
    if (text == nullptr) refuse(value->at, "expected a set as text, such as \"[1-3,5]\"");
    return setOf(*text, value->at);
}

standin::StyleValue valueOf(const JsonValue& value) {
    if (const auto* const number = std::get_if<double>(&value.value)) return *number;
    if (const auto* const integer = std::get_if<std::int64_t>(&value.value)) return *integer;
    if (const auto* const items = std::get_if<JsonValue::Array>(&value.value)) return setOf(*items);
    if (const auto* const object = std::get_if<JsonValue::Object>(&value.value))
        return markedValueOf(*object, value.at);
    const auto* const text = std::get_if<std::string>(&value.value);
    if (text == nullptr) refuse(value.at, "expected a number, a text, a set or keywords");
    if (holdsNul(*text)) refuse(value.at, "a text cannot hold a NUL");
    return *text;
}

// ---- The tree

class SettingCollector {
public:
    std::vector<StyleSetting> collect(const JsonValue& root) {
        const auto* const keywords = std::get_if<JsonValue::Object>(&root.value);
        if (keywords == nullptr) refuse(root.at, "expected an object of keywords");
        takeKeywords(*keywords);
        return std::move(m_settings);
    }

private:
    void takeKeywords(const JsonValue::Object& keywords) {
        std::set<std::string> known;
        for (const JsonMember& member : keywords) {
            checkKeyword(member);
            if (!known.insert(inUpperCase(member.name)).second) {
                refuse(member.at, quoted(member.name) + " is given twice; the case of letters does not matter");
            }
            m_path.push_back(member.name);
            takeSetting(member.value);
            m_path.pop_back();
        }
    }

    void checkKeyword(const JsonMember& keyword) const {
        if (keyword.name.empty()) refuse(keyword.at, "a keyword is empty");
        if (isSpecial(keyword)) refuse(keyword.at, quoted(keyword.name) + " cannot stand among keywords");
        if (holdsNul(keyword.name)) refuse(keyword.at, "a keyword cannot hold a NUL");
        if (m_path.size() == kMostStyleKeywords) {
            refuse(keyword.at, quoted(keyword.name) + " is the seventh keyword of a path; six are the most");
        }
    }

    void takeSetting(const JsonValue& value) {
        const auto* const object = std::get_if<JsonValue::Object>(&value.value);
        if (object == nullptr) return add(std::nullopt, value);
        if (object->empty()) refuse(value.at, "expected keywords or a value, but there is nothing");
        if (std::none_of(object->begin(), object->end(), isSpecial)) return takeKeywords(*object);
        const Members members = membersOf(*object, {DOUBLE_name, SET_name, OFFSETS_name, VALUE_name});
        if (members.count(OFFSETS_name) == 0 && members.count(VALUE_name) == 0) return add(std::nullopt, value);
        takeOffsets(membersOf(*object, {OFFSETS_name, VALUE_name}), value.at);
    }

    void takeOffsets(const Members& members, std::size_t at) {
        const auto list = members.find(OFFSETS_name);
        if (list == members.end()) refuse(at, "expected '$offsets' with the '$value'");
        const auto* const entries = std::get_if<JsonValue::Array>(&list->second->value);
        if (entries == nullptr || entries->empty())
            refuse(list->second->at, "expected an array of values with offsets");
        const auto otherwise = members.find(VALUE_name);
        if (otherwise != members.end()) add(std::nullopt, *otherwise->second);
        std::set<Offsets> known;
        for (const JsonValue& entry : *entries) takeEntry(entry, known);
    }

    void takeEntry(const JsonValue& entry, std::set<Offsets>& known) {
        const auto* const object = std::get_if<JsonValue::Object>(&entry.value);
        if (object == nullptr) refuse(entry.at, "expected an object of 'offset1', 'offset2' and 'value'");
        const Members members = membersOf(*object, {"offset1", "offset2", "value"});
        const auto value = members.find("value");
        if (value == members.end()) refuse(entry.at, "expected a 'value' for the offsets");
        const Offsets offsets = {offsetOf(members, "offset1"), offsetOf(members, "offset2")};
        if (!known.insert(offsets).second) refuse(entry.at, "these offsets are given twice");
        add(offsets, *value->second);
    }

    static long offsetOf(const Members& members, const char* name) {
        const auto offset = members.find(name);
        if (offset == members.end()) return 0;
        const auto* const integer = std::get_if<std::int64_t>(&offset->second->value);
        if (integer == nullptr) refuse(offset->second->at, "expected an integer");
        return static_cast<long>(*integer);
    }

    void add(const std::optional<Offsets>& offsets, const JsonValue& value) {
        StyleSetting setting{m_path, offsets, valueOf(value)};
        const Kind_e kind = kindOf(setting.value);
        const Kind_e expected = kind == Double ? Double : m_kindOf(m_path);
        if (kind != expected) {
            refuse(value.at, "add-ons take " + quoted(m_path.back()) + " for " + kKindNames[expected] +
                                 " unless it is a double, but this is " + kKindNames[kind]);
        }
        m_settings.push_back(std::move(setting));
    }

    Path m_path;  // of the value that is taken
    std::vector<StyleSetting> m_settings;
    KindQuery m_kindOf;
};

// ---- The file

// `LINE:COLUMN`, both counted from 1; columns are bytes.
std::string placeIn(std::string_view text, std::size_t at) {
    const std::string_view before = text.substr(0, at);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t column = before.size() - (before.rfind('\n') + 1) + 1;
    return std::to_string(line) + ':' + std::to_string(column);
}

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
