#include "style/StyleTree.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "vexa/InvalidArgumentException.h"

namespace vexa::standin {
namespace {

using Path = std::vector<std::string>;

constexpr std::size_t kMostKeywords = 6;

void makeUpperCase(std::string& keyword) {
    for (char& c : keyword) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
}

Path inUpperCase(Path path) {
    std::for_each(path.begin(), path.end(), makeUpperCase);
    return path;
}

void refuseUnlessPath(const Path& path) {
    if (path.empty() || path.size() > kMostKeywords) {
        throw InvalidArgumentException("Expected a style path of 1 to " + std::to_string(kMostKeywords) +
                                       " keywords, but got " + std::to_string(path.size()));
    }
    const auto empty = std::find(path.begin(), path.end(), "");
    if (empty != path.end()) {
        throw InvalidArgumentException("Expected a style path of keywords, but number " +
                                       std::to_string(empty - path.begin() + 1) + " is empty");
    }
}

bool leadsTo(const Path& path, const Path& deeper) {
    return deeper.size() > path.size() && std::equal(path.begin(), path.end(), deeper.begin());
}

template <class Value>
const Value* argument(const std::vector<Argument>& arguments, const std::string& name) {
    for (const Argument& candidate : arguments) {
        const Value* const value = std::get_if<Value>(&candidate.value);
        if (value != nullptr && candidate.name == name) return value;
    }
    return nullptr;
}

template <class Value>
Value argumentOr(const std::vector<Argument>& arguments, const std::string& name, Value otherwise) {
    const auto* const value = argument<Value>(arguments, name);
    return value == nullptr ? otherwise : *value;
}

std::string nameOfKeyword(std::size_t number) { return 'P' + std::to_string(number); }

bool isOfQuery(const Argument& argument) {
    const auto isKeyword = [&](std::size_t number) { return argument.name == nameOfKeyword(number); };
    for (std::size_t number = 1; number <= kMostKeywords + 1; ++number) {
        if (isKeyword(number)) return true;
    }
    const auto names = {"Offset1", "Offset2", "DValue", "IValue"};
    return std::any_of(names.begin(), names.end(), [&](const char* name) { return argument.name == name; });
}

// Whether each keyword of the path precedes those deeper in it.
bool isInOrder(const std::vector<Argument>& arguments) {
    std::string last;
    for (const Argument& argument : arguments) {
        if (argument.name.size() != 2 || argument.name.front() != 'P') continue;
        if (argument.name < last) return false;
        last = argument.name;
    }
    return true;
}

void storeZero(const StyleQuery& query) {
    if (query.number != nullptr) *query.number = 0.0;
    if (query.anythingElse != nullptr) *query.anythingElse = 0;
}

// What the host answers for a value that is there: Ok, unless it minds how the query is written.
Fact factAboutFound(const StyleQuery& query, const HostAnswers& answers, bool isSpelledAlike) {
    const std::pair<Fact, bool> oddities[] = {{Fact::StyleSettingAnyOrder, !query.isInOrder},
                                              {Fact::StyleSettingUnknownArgument, query.hasUnknownArgument},
                                              {Fact::StyleSettingLowerCase, !isSpelledAlike}};
    for (const auto& [fact, isOdd] : oddities) {
        if (isOdd && answers.code(fact) != GetValueReturnCode_Ok) return fact;
    }
    return Fact::StyleSettingRead;
}

// The keywords of "P1" and so on; empty if one between them is missing.
Path pathOf(const std::vector<Argument>& arguments) {
    Path path;
    for (std::size_t i = 1; i <= kMostKeywords; ++i) {
        const auto* const keyword = argument<std::string>(arguments, nameOfKeyword(i));
        if (keyword == nullptr) continue;
        if (path.size() + 1 != i) return {};
        path.push_back(*keyword);
    }
    return path;
}

}  // namespace

std::optional<StyleQuery> styleQueryOf(std::vector<Argument> arguments, const HostAnswers& answers) {
    StyleQuery query;
    query.isInOrder = isInOrder(arguments);
    query.hasUnknownArgument = !std::all_of(arguments.begin(), arguments.end(), isOfQuery);
    if (answers.is(Fact::ListAppendSameNameTwiceCounts, "last")) std::reverse(arguments.begin(), arguments.end());
    query.hasSeventhKeyword = argument<std::string>(arguments, nameOfKeyword(kMostKeywords + 1)) != nullptr;
    query.path = pathOf(arguments);
    query.offsets = {argumentOr(arguments, "Offset1", 0L), argumentOr(arguments, "Offset2", 0L)};
    query.number = argumentOr<double*>(arguments, "DValue", nullptr);
    query.anythingElse = argumentOr<VexaArbParam*>(arguments, "IValue", nullptr);
    const bool hasOnePlace = (query.number == nullptr) != (query.anythingElse == nullptr);
    if (query.path.empty() || !hasOnePlace) return std::nullopt;
    return query;
}

std::pair<StyleTree::SetHandle, StyleTree::SetHandle> StyleTree::set(const Path& path, const Offsets& offsets,
                                                                     const StyleValue& value) {
    const auto handleOf = [](const Value& held) {
        const SetHandle* const handle = std::get_if<SetHandle>(&held);
        return handle == nullptr ? nullptr : *handle;
    };
    refuseUnlessPath(path);
    Value added = valueOf(value);
    const SetHandle handle = handleOf(added);
    const std::lock_guard<std::mutex> lock(m_guard);
    Setting& setting = m_settings[inUpperCase(path)];
    setting.spelling = path;
    std::swap(setting.values[offsets], added);
    return {handle, handleOf(added)};
}

GetValueReturnCode_e StyleTree::answer(const StyleQuery& query, const HostAnswers& answers) const {
    const std::lock_guard<std::mutex> lock(m_guard);
    const Value* value = nullptr;
    const Fact fact = find(query, answers, value);
    if (fact == Fact::StyleSettingRead) {
        store(*value, query);
        return GetValueReturnCode_Ok;
    }
    if (fact == Fact::StyleUnknownPath && !answers.truth(Fact::StyleUnknownPathKeepsValue)) storeZero(query);
    return answers.code(fact);
}

Fact StyleTree::find(const StyleQuery& query, const HostAnswers& answers, const Value*& value) const {
    const Path path = inUpperCase(query.path);
    const auto found = m_settings.lower_bound(path);
    if (found == m_settings.end()) return factAboutUnknown(query, path);
    if (leadsTo(path, found->first)) return Fact::StyleSettingParent;
    if (found->first != path) return factAboutUnknown(query, path);

    const auto& values = found->second.values;
    auto exact = values.find(query.offsets);
    if (exact == values.end()) exact = values.find(std::nullopt);
    if (exact == values.end()) return Fact::StyleSettingWrongOffsets;
    value = &exact->second;
    const bool isNumber = std::holds_alternative<double>(*value);
    if (isNumber != (query.number != nullptr)) return Fact::StyleSettingOtherType;
    return factAboutFound(query, answers, query.path == found->second.spelling);
}

Fact StyleTree::factAboutUnknown(const StyleQuery& query, const Path& path) const {
    const auto isPresent = [](const std::string& keyword) { return !keyword.empty(); };
    if (!std::all_of(path.begin(), path.end(), isPresent)) return Fact::StyleEmptyKeyword;
    if (query.hasSeventhKeyword) return Fact::StyleSevenKeywords;
    if (query.offsets != StyleQuery().offsets) return Fact::StyleUnknownPathWrongOffsets;
    for (Path parent = path; !parent.empty(); parent.pop_back()) {
        if (m_settings.count(parent) != 0) return Fact::StyleSettingChild;
    }
    return Fact::StyleUnknownPath;
}

void StyleTree::store(const Value& value, const StyleQuery& query) {
    if (const double* const number = std::get_if<double>(&value)) {
        *query.number = *number;
    } else if (const auto* const integer = std::get_if<std::int64_t>(&value)) {
        *query.anythingElse = *integer;
    } else if (const auto* const text = std::get_if<std::shared_ptr<const std::string>>(&value)) {
        *query.anythingElse = reinterpret_cast<VexaArbParam>((*text)->c_str());
    } else {
        *query.anythingElse = reinterpret_cast<VexaArbParam>(std::get<SetHandle>(value).get());
    }
}

StyleTree::Value StyleTree::valueOf(const StyleValue& value) {
    if (const auto* const text = std::get_if<std::string>(&value)) return std::make_shared<const std::string>(*text);
    if (const auto* const set = std::get_if<toolbox::Set>(&value)) return std::make_shared<Set_s>(*set);
    if (const auto* const integer = std::get_if<std::int64_t>(&value)) return *integer;
    return std::get<double>(value);
}

}  // namespace vexa::standin
