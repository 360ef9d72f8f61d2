#include "contract/ArgumentNames.h"

#include <algorithm>
#include <iterator>

namespace vexa::standin {
namespace {

struct KnownArgument {
    const char* name;
    ArgumentKind_e kind;
};

constexpr KnownArgument kKnownArguments[] = {
    {"P1", ArgumentKind_e::String},
    {"P2", ArgumentKind_e::String},
    {"P3", ArgumentKind_e::String},
    {"P4", ArgumentKind_e::String},
    {"P5", ArgumentKind_e::String},
    {"P6", ArgumentKind_e::String},
    {"Offset1", ArgumentKind_e::Integer},
    {"Offset2", ArgumentKind_e::Integer},
    {"DValue", ArgumentKind_e::DoubleAddress},
    {"IValue", ArgumentKind_e::ParamAddress},
};

constexpr const char* kPath[] = {"P1", "P2", "P3", "P4", "P5", "P6"};

const char* textOf(ArgumentKind_e kind) {
    switch (kind) {
        case ArgumentKind_e::String: return "a string";
        case ArgumentKind_e::Integer: return "an integer";
        case ArgumentKind_e::DoubleAddress: return "the address of a double";
        case ArgumentKind_e::ParamAddress: return "the address of an arbitrary value";
    }
    return "";
}

}  // namespace

void ArgumentNames::appended(const void* argList, const char* name, ArgumentKind_e kind, const void* address,
                             bool isAppended, const Moment& now, FindingLog& findings) {
    if (!m_argLists.isLiving(argList) || name == nullptr) return;
    const std::string label = m_argLists.labelOf(argList);
    if (const Given* const before = find(argList, name)) {
        findings.add("duplicate-argument", "\"" + std::string(name) + "\" was appended twice to " + label, now,
                     &before->since);
        return;
    }
    if (!isAppended) return;
    m_names[argList].push_back({name, address, now.withStack()});
    const auto known = std::find_if(std::begin(kKnownArguments), std::end(kKnownArguments),
                                    [=](const KnownArgument& argument) { return argument.name == std::string(name); });
    if (known == std::end(kKnownArguments) || known->kind == kind) return;
    findings.add("wrong-argument-kind",
                 "\"" + std::string(name) + "\" was appended to " + label + " as " + textOf(kind) +
                     ", but it must be " + textOf(known->kind),
                 now, &m_argLists.originOf(argList));
}

void ArgumentNames::queried(const void* argList, const Moment& now, FindingLog& findings) const {
    if (!m_argLists.isLiving(argList)) return;
    const std::string label = m_argLists.labelOf(argList);
    const Moment& origin = m_argLists.originOf(argList);
    const auto given = [&](const char* name) { return find(argList, name); };
    std::string missing;
    const auto gap = std::find_if_not(std::begin(kPath), std::end(kPath), given);
    if (gap == std::begin(kPath) || std::any_of(gap, std::end(kPath), given)) missing = '"' + std::string(*gap) + '"';
    const Given* const number = given("DValue");
    const Given* const param = given("IValue");
    if (number == nullptr && param == nullptr) {
        missing += (missing.empty() ? "" : " and ") + std::string(R"("DValue" or "IValue")");
    }
    if (!missing.empty()) {
        findings.add("missing-argument", "the style query with " + label + " lacks " + missing, now, &origin);
    }
    if (number != nullptr && param != nullptr) {
        findings.add("duplicate-argument", "the style query with " + label + R"( has both "DValue" and "IValue")", now,
                     &origin);
    }
}

const VexaArbParam* ArgumentNames::placeOfHandle(const void* argList) const {
    const Given* const given = find(argList, "IValue");
    return given == nullptr ? nullptr : static_cast<const VexaArbParam*>(given->address);
}

const ArgumentNames::Given* ArgumentNames::find(const void* argList, const std::string& name) const {
    const auto found = m_names.find(argList);
    if (found == m_names.end()) return nullptr;
    for (const Given& given : found->second) {
        if (given.name == name) return &given;
    }
    return nullptr;
}

}  // namespace vexa::standin
