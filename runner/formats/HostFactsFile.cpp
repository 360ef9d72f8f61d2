#include "formats/HostFactsFile.h"

#include <set>
#include <system_error>

#include "formats/JsonText.h"
#include "system/files/WholeFile.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

constexpr std::int64_t kSchema = 1;

const JsonValue& memberOf(const JsonValue& value, const std::string& name) {
    const auto* const members = std::get_if<JsonValue::Object>(&value.value);
    if (members == nullptr) throw JsonError(value.at, "expected an object with '" + name + "'");
    for (const JsonMember& member : *members) {
        if (member.name == name) return member.value;
    }
    throw JsonError(value.at, "'" + name + "' is missing");
}

std::string textOf(const JsonValue& fact, const std::string& name) {
    for (const JsonMember& member : std::get<JsonValue::Object>(fact.value)) {
        const auto* const text = std::get_if<std::string>(&member.value.value);
        if (member.name == name && text == nullptr) throw JsonError(member.value.at, "expected a text");
        if (member.name == name) return *text;
    }
    return "";
}

// Empty for null.
std::string answerOf(const JsonValue& answer) {
    if (std::holds_alternative<std::nullptr_t>(answer.value)) return "";
    if (const bool* const truth = std::get_if<bool>(&answer.value)) return *truth ? "true" : "false";
    if (const auto* const number = std::get_if<std::int64_t>(&answer.value)) return std::to_string(*number);
    const auto* const word = std::get_if<std::string>(&answer.value);
    if (word == nullptr || word->empty()) {
        throw JsonError(answer.at, "expected an answer: true, false, an integer, a text or null");
    }
    return *word;
}

}  // namespace

std::vector<HostFact> parseHostFacts(const std::string& text) {
    const JsonValue content = parseJson(text);
    const JsonValue& schema = memberOf(content, "schema");
    const auto* const number = std::get_if<std::int64_t>(&schema.value);
    if (number == nullptr || *number != kSchema) {
        throw JsonError(schema.at, "expected schema " + std::to_string(kSchema));
    }
    const JsonValue& named = memberOf(content, "facts");
    const auto* const members = std::get_if<JsonValue::Object>(&named.value);
    if (members == nullptr) throw JsonError(named.at, "expected an object with the facts");
    std::vector<HostFact> facts;
    std::set<std::string> names;
    for (const JsonMember& member : *members) {
        if (!names.insert(member.name).second) throw JsonError(member.at, "the fact is given twice");
        const std::string answer = answerOf(memberOf(member.value, "answer"));
        facts.push_back({member.name, textOf(member.value, "question"), answer, textOf(member.value, "reason")});
    }
    return facts;
}

std::optional<std::vector<HostFact>> readHostFacts(const std::string& file) {
    std::string text;
    try {
        text = readInput(file);
        return parseHostFacts(text);
    } catch (const JsonError& error) {
        tell(file + ':' + placeIn(text, error.at), "no facts file: " + std::string(error.what()));
    } catch (const std::system_error& error) {
        tell(file, "cannot be read: " + error.code().message());
    }
    return std::nullopt;
}

standin::HostFacts answersOf(const std::vector<HostFact>& facts) {
    standin::HostFacts answers;
    for (const HostFact& fact : facts) {
        if (fact.isAnswered()) answers[fact.name] = fact.answer;
    }
    return answers;
}

}  // namespace vexa::runner
