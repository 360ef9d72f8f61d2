#include "probe/FactsFile.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "probe/ReplacedFile.h"

namespace vexa::probe {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kSchema = 1;
constexpr const char* kRefused = ": cannot be read: ";
constexpr const char* kNotAsked = "not asked";

Json jsonOf(const Answer& answer) {
    return std::visit(
        [](const auto& value) -> Json {
            if constexpr (std::is_same_v<std::decay_t<decltype(value)>, NoAnswer>) {
                return nullptr;
            } else {
                return value;
            }
        },
        answer);
}

Answer answerOf(const Json& fact) {
    const Json& answer = fact.at("answer");
    if (answer.is_null()) return NoAnswer{fact.value("reason", kNotAsked)};
    if (answer.is_boolean()) return answer.get<bool>();
    if (answer.is_number_integer()) return answer.get<long>();
    return answer.get<std::string>();
}

Json entryOf(const facts::FactInfo& info, const Answer& answer) {
    Json entry = {{"question", info.question}, {"answer", jsonOf(answer)}};
    if (const auto* const none = std::get_if<NoAnswer>(&answer)) entry["reason"] = none->reason;
    return entry;
}

}  // namespace

FactsFile::FactsFile(std::string path) : m_path(std::move(path)), m_answers(facts::kFactCount, NoAnswer{kNotAsked}) {
    std::error_code ignored;
    const auto status = std::filesystem::status(m_path, ignored);
    if (status.type() == std::filesystem::file_type::not_found) return;
    if (!std::filesystem::is_regular_file(status))
        throw std::runtime_error(m_path + kRefused + "it is no regular file");
    std::ifstream file(m_path, std::ios::binary);
    if (!file) throw std::runtime_error(m_path + kRefused + std::generic_category().message(errno));
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    try {
        read(text);
    } catch (const nlohmann::json::exception& problem) {
        throw std::runtime_error(m_path + kRefused + "it is no facts file: " + problem.what());
    }
}

void FactsFile::read(const std::string& text) {
    const Json content = Json::parse(text);
    if (content.at("schema") != kSchema) {
        throw std::runtime_error(m_path + kRefused + "its schema is not " + std::to_string(kSchema));
    }
    for (const auto& [name, fact] : content.at("facts").items()) {
        if (const auto known = facts::findFact(name)) set(*known, answerOf(fact));
    }
    for (const Json& shutdown : content.value("shutdowns", Json::array())) {
        shutdowns.push_back({shutdown.at("process").get<long>(), shutdown.at("loadedAt").get<std::int64_t>()});
    }
}

void FactsFile::write() const {
    Json facts = Json::object();
    for (std::size_t i = 0; i != facts::kFactCount; ++i) {
        facts[facts::kFacts[i].name] = entryOf(facts::kFacts[i], m_answers[i]);
    }
    Json content = {{"schema", kSchema}, {"probe", VEXA_PROBE_VERSION}, {"facts", std::move(facts)}};
    for (const Shutdown& shutdown : shutdowns) {
        content["shutdowns"].push_back({{"process", shutdown.process}, {"loadedAt", shutdown.loadedAt}});
    }
    replaceFile(m_path, content.dump(2, ' ', false, Json::error_handler_t::replace) + '\n');
}

}  // namespace vexa::probe
