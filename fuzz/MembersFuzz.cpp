// Changes a Set and a std::set by the same operations, which the input lists in three bytes each: what to do, the first
// member and the length. After each operation both must have the same members.

#include <limits>
#include <set>
#include <vector>

#include "Fuzz.h"
#include "vexa/InvalidArgumentException.h"
#include "vexa/toolbox/Set.h"

namespace vexa::fuzz {
namespace {

using Model = std::set<std::int64_t>;
using toolbox::Set;

constexpr std::size_t kOperationBytes = 3;
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

struct Operation {
    unsigned kind;
    std::int64_t first;
    std::int64_t last;
};

// Half of the operations are near the greatest member.
Operation operationAt(const std::uint8_t* bytes) {
    const bool isHigh = bytes[0] >= 128;
    const std::int64_t first = isHigh ? kHighest - bytes[1] : bytes[1];
    const std::int64_t length = bytes[2] % 16;
    return {bytes[0] % 8U, first, first > kHighest - length ? kHighest : first + length};
}

template <class Change>
void forEach(const Operation& operation, const Change& change) {
    for (std::int64_t member = operation.first;; ++member) {
        change(member);
        if (member == operation.last) return;
    }
}

// ---- The text of a set, by its members

std::string textOf(const Model& members) {
    std::string text = "[";
    for (auto member = members.begin(); member != members.end();) {
        const std::int64_t first = *member;
        std::int64_t last = first;
        while (++member != members.end() && *member == last + 1) ++last;
        if (text.size() > 1) text += ',';
        text += std::to_string(first);
        if (last != first) text += '-' + std::to_string(last);
    }
    return text + ']';
}

// ---- The properties

template <class Work>
void requireRefused(const Work& work) {
    try {
        work();
    } catch (const InvalidArgumentException&) {
        return;
    }
    require(false, "a wrong argument is refused");
}

void tryWrongArguments(Set& set, const Operation& operation) {
    requireRefused([&] { set.insert(-1 - operation.first); });
    if (operation.first != operation.last) requireRefused([&] { set.insert(operation.last, operation.first); });
    requireRefused([&] { set.assign("[" + std::to_string(operation.first) + ",]"); });
}

void requireSame(const Set& set, const Model& members, const Operation& operation) {
    require(set.isEmpty() == members.empty(), "a set is empty as the model is");
    require(set.size() == members.size(), "a set has as many members as the model");
    require(
        std::vector<std::int64_t>(set.begin(), set.end()) == std::vector<std::int64_t>(members.begin(), members.end()),
        "a set has the members of the model in their order", set.toString());
    require(set.toString() == textOf(members), "the text has the members of the model", set.toString());
    forEach(operation, [&](std::int64_t member) {
        require(set.contains(member) == (members.count(member) != 0), "a member of the model is contained");
    });
}

void apply(const Operation& operation, Set& set, Model& members) {
    switch (operation.kind) {
        case 0: set.insert(operation.first); return void(members.insert(operation.first));
        case 1: set.erase(operation.first); return void(members.erase(operation.first));
        case 2:
        case 3:
            set.insert(operation.first, operation.last);
            return forEach(operation, [&](std::int64_t member) { members.insert(member); });
        case 4:
        case 5:
            set.erase(operation.first, operation.last);
            return forEach(operation, [&](std::int64_t member) { members.erase(member); });
        case 6: return set.assign(textOf(members));
        default: tryWrongArguments(set, operation);
    }
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    Set set;
    Model members;
    for (std::size_t at = 0; at + kOperationBytes <= size; at += kOperationBytes) {
        const Operation operation = operationAt(data + at);
        apply(operation, set, members);
        requireSame(set, members, operation);
    }
    require(Set(set) == set, "a copy is equal");
    return 0;
}
