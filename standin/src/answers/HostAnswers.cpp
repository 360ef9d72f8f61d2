#include "answers/HostAnswers.h"

#include <charconv>
#include <cstddef>

#include "vexastandin/HostFacts.h"

namespace vexa::standin {
namespace {

using facts::FactInfo;
using facts::Kind_e;

constexpr std::string_view kCodes[] = {"Ok", "OtherType", "UnknownPath", "NotAvailable"};

std::optional<long> codeOf(std::string_view answer) {
    for (std::size_t code = 0; code != std::size(kCodes); ++code) {
        if (kCodes[code] == answer) return static_cast<long>(code);
    }
    return std::nullopt;
}

std::optional<long> truthOf(std::string_view answer) {
    if (answer == "true") return 1;
    return answer == "false" ? std::optional<long>(0) : std::nullopt;
}

std::optional<long> countOf(std::string_view answer) {
    long count = 0;
    const char* const end = answer.data() + answer.size();
    const std::from_chars_result result = std::from_chars(answer.data(), end, count);
    if (result.ec == std::errc() && result.ptr == end && count >= 0) return count;
    return std::nullopt;
}

std::string whyUnknown(const FactInfo& info) {
    switch (info.kind) {
        case Kind_e::Truth: return "expected true or false";
        case Kind_e::Code: return "expected Ok, OtherType, UnknownPath or NotAvailable";
        case Kind_e::Count: return std::string("expected a number from 0 to ") + info.standIn;
        case Kind_e::Word: return std::string("the stand-in can answer ") + info.limit;
        case Kind_e::Fixed: return std::string("the stand-in answers ") + info.standIn + ": " + info.limit;
    }
    return "";
}

}  // namespace

HostAnswers::HostAnswers() {
    for (std::size_t i = 0; i != facts::kFactCount; ++i) {
        const auto fact = static_cast<Fact>(i);
        m_values[i] = parse(fact, facts::infoOf(fact).standIn).value_or(0);
    }
}

std::string HostAnswers::take(Fact fact, std::string_view answer) {
    const std::optional<long> value = parse(fact, answer);
    if (!value) return whyUnknown(facts::infoOf(fact));
    m_values[static_cast<std::size_t>(fact)] = *value;
    return "";
}

std::optional<std::size_t> HostAnswers::limit(Fact fact) const {
    const long count = valueOf(fact);
    if (count == countOf(facts::infoOf(fact).standIn)) return std::nullopt;
    return static_cast<std::size_t>(count);
}

std::optional<long> HostAnswers::parse(Fact fact, std::string_view answer) {
    const FactInfo& info = facts::infoOf(fact);
    switch (info.kind) {
        case Kind_e::Truth: return truthOf(answer);
        case Kind_e::Code: return codeOf(answer);
        case Kind_e::Count: {
            const std::optional<long> count = countOf(answer);
            if (count && *count <= countOf(info.standIn)) return count;
            return std::nullopt;
        }
        case Kind_e::Word: {
            const long index = indexOf(fact, answer);
            return index < 0 ? std::nullopt : std::optional<long>(index);
        }
        case Kind_e::Fixed: return answer == info.standIn ? std::optional<long>(0) : std::nullopt;
    }
    return std::nullopt;
}

std::vector<UnlikeFact> unlikeFacts(const HostFacts& facts) {
    HostAnswers answers;
    std::vector<UnlikeFact> unlike;
    for (const auto& [name, answer] : facts) {
        const std::optional<Fact> fact = facts::findFact(name);
        const std::string reason = fact ? answers.take(*fact, answer) : "this version of the stand-in does not know it";
        if (!reason.empty()) unlike.push_back({name, answer, reason});
    }
    return unlike;
}

}  // namespace vexa::standin
