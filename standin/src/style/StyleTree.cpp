#include "style/StyleTree.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "vexa/InvalidArgumentException.h"

namespace vexa::standin {
namespace {

using Path = std::vector<std::string>;

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
    if (path.empty() || path.size() > kMostStyleKeywords) {
        throw InvalidArgumentException("Expected a style path of 1 to " + std::to_string(kMostStyleKeywords) +
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

// Returns the keywords of "P1" and so on; empty if there is a gap.
Path pathOf(const std::vector<Argument>& arguments) {
    Path path;
    for (std::size_t i = 1; i <= kMostStyleKeywords; ++i) {
        const auto* const keyword = argument<std::string>(arguments, 'P' + std::to_string(i));
        if (keyword == nullptr) continue;
        if (path.size() + 1 != i) return {};
        path.push_back(*keyword);
    }
    return path;
}

}  // namespace

std::optional<StyleQuery> styleQueryOf(const std::vector<Argument>& arguments) {
    StyleQuery query;
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
    std::swap(m_values[inUpperCase(path)][offsets], added);
    return {handle, handleOf(added)};
}

GetValueReturnCode_e StyleTree::answer(const StyleQuery& query) const {
    const Path path = inUpperCase(query.path);
    const std::lock_guard<std::mutex> lock(m_guard);
    const auto found = m_values.lower_bound(path);
    if (found == m_values.end()) return GetValueReturnCode_UnknownPath;
    if (leadsTo(path, found->first)) return GetValueReturnCode_NotAvailable;
    if (found->first != path) return GetValueReturnCode_UnknownPath;

    const auto& values = found->second;
    auto value = values.find(query.offsets);
    if (value == values.end()) value = values.find(std::nullopt);
    if (value == values.end()) return GetValueReturnCode_NotAvailable;

    const double* const number = std::get_if<double>(&value->second);
    if ((number == nullptr) != (query.number == nullptr)) return GetValueReturnCode_OtherType;
    if (number != nullptr) {
        *query.number = *number;
    } else if (const auto* const integer = std::get_if<std::int64_t>(&value->second)) {
        *query.anythingElse = *integer;
    } else if (const auto* const text = std::get_if<std::shared_ptr<const std::string>>(&value->second)) {
        *query.anythingElse = reinterpret_cast<VexaArbParam>((*text)->c_str());
    } else {
        *query.anythingElse = reinterpret_cast<VexaArbParam>(std::get<SetHandle>(value->second).get());
    }
    return GetValueReturnCode_Ok;
}

StyleTree::Value StyleTree::valueOf(const StyleValue& value) {
    if (const auto* const text = std::get_if<std::string>(&value)) return std::make_shared<const std::string>(*text);
    if (const auto* const set = std::get_if<toolbox::Set>(&value)) return std::make_shared<Set_s>(*set);
    if (const auto* const integer = std::get_if<std::int64_t>(&value)) return *integer;
    return std::get<double>(value);
}

}  // namespace vexa::standin
