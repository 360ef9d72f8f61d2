#include "probe/FactsFile.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "probe/ReplacedFile.h"

namespace vexa::probe {
namespace {

using Json = nlohmann::json;

constexpr long kSchema = 1;
constexpr const char* kRefused = ": cannot be read: ";
constexpr const char* kNotAsked = "not asked";

// Texts of this program and those that the parser accepted: they are UTF-8 without control characters.
std::string quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

struct JsonText {
    std::string operator()(const NoAnswer& none) const { return "null,\n      \"reason\": " + quoted(none.reason); }
    std::string operator()(bool truth) const { return truth ? "true" : "false"; }
    std::string operator()(long number) const { return std::to_string(number); }
    std::string operator()(const std::string& text) const { return quoted(text); }
};

std::string entryOf(const facts::FactInfo& info, const Answer& answer) {
    return std::string("    ") + quoted(info.name) + ": {\n      \"question\": " + quoted(info.question) +
           ",\n      \"answer\": " + std::visit(JsonText(), answer) + "\n    }";
}

std::string entryOf(const Shutdown& shutdown) {
    return "    {\"process\": " + std::to_string(shutdown.process) +
           ", \"loadedAt\": " + std::to_string(shutdown.loadedAt) + '}';
}

bool hasControls(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; });
}

}  // namespace

// Takes the values as the parser finds them. There is no tree of JSON values, because the destructor of nlohmann::json
// allocates memory, and ends the host if there is none.
class FactsFile::Reader : public nlohmann::json_sax<Json> {
public:
    explicit Reader(FactsFile& file) : m_file(file) {}

    bool hasSchema() const { return m_schema == kSchema; }

    bool null() override { return add(NoAnswer{kNotAsked}); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(number_integer_t value) override { return add(static_cast<long>(value)); }
    bool number_unsigned(number_unsigned_t value) override { return add(static_cast<long>(value)); }
    bool number_float(number_float_t, const string_t&) override { return refuse("a fraction"); }
    bool string(string_t& value) override { return hasControls(value) ? refuse("a control character") : add(value); }
    bool binary(binary_t&) override { return refuse("binary data"); }
    bool start_object(std::size_t) override { return open(); }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(); }
    bool end_array() override { return close(); }
    bool key(string_t& name) override {
        m_path.back() = name;
        return true;
    }
    bool parse_error(std::size_t, const std::string&, const Json::exception& error) override {
        return refuse(error.what());
    }

private:
    bool open() {
        if (isAt({"facts", "", "answer"})) return refuse("a list or an object");
        m_path.emplace_back();
        if (m_path.size() == kShutdownDepth && m_path.front() == "shutdowns") m_file.shutdowns.push_back({0, 0});
        return true;
    }

    bool close() {
        m_path.pop_back();
        return true;
    }

    bool add(const Answer& value) {
        if (m_path.empty()) return refuse("no object");
        const auto* const number = std::get_if<long>(&value);
        if (isAt({"schema"}) && number != nullptr) m_schema = *number;
        if (m_path.size() == kShutdownDepth && m_path.front() == "shutdowns" && number != nullptr) {
            Shutdown& shutdown = m_file.shutdowns.back();
            if (m_path.back() == "process") shutdown.process = *number;
            if (m_path.back() == "loadedAt") shutdown.loadedAt = *number;
        }
        if (isAt({"facts", "", "answer"})) set(value);
        if (isAt({"facts", "", "reason"})) setReason(value);
        return true;
    }

    void set(const Answer& answer) {
        const auto fact = facts::findFact(m_path[1]);
        if (fact && !m_file.isAnswered(*fact) && !std::holds_alternative<NoAnswer>(answer)) m_file.set(*fact, answer);
    }

    void setReason(const Answer& reason) {
        const auto fact = facts::findFact(m_path[1]);
        const auto* const text = std::get_if<std::string>(&reason);
        if (fact && text != nullptr && !m_file.isAnswered(*fact)) m_file.set(*fact, NoAnswer{*text});
    }

    // Whether the value is at \p path; an empty name is any name.
    bool isAt(std::initializer_list<std::string_view> path) const {
        return std::equal(
            m_path.begin(), m_path.end(), path.begin(), path.end(),
            [](const std::string& name, std::string_view expected) { return expected.empty() || name == expected; });
    }

    [[noreturn]] bool refuse(const std::string& reason) const {
        throw std::runtime_error(m_file.m_path + kRefused + "it is no facts file: " + reason);
    }

    static constexpr std::size_t kShutdownDepth = 3;

    FactsFile& m_file;
    std::vector<std::string> m_path;  // the names of the open objects' members; empty in arrays
    long m_schema = 0;
};

FactsFile::FactsFile(std::string path) : m_path(std::move(path)), m_answers(facts::kFactCount, NoAnswer{kNotAsked}) {
    std::error_code ignored;
    const auto status = std::filesystem::status(m_path, ignored);
    if (status.type() == std::filesystem::file_type::not_found) return;
    if (!std::filesystem::is_regular_file(status)) {
        throw std::runtime_error(m_path + kRefused + "it is no regular file");
    }
    std::ifstream file(m_path, std::ios::binary);
    if (!file) throw std::runtime_error(m_path + kRefused + std::generic_category().message(errno));
    read({std::istreambuf_iterator<char>(file), {}});
}

void FactsFile::read(const std::string& text) {
    Reader reader(*this);
    Json::sax_parse(text, &reader);
    if (reader.hasSchema()) return;
    throw std::runtime_error(m_path + kRefused + "its schema is not " + std::to_string(kSchema));
}

void FactsFile::write() const {
    std::string text = "{\n  \"schema\": " + std::to_string(kSchema) + ",\n  \"probe\": \"" VEXA_PROBE_VERSION "\",\n";
    text += "  \"facts\": {\n";
    for (std::size_t i = 0; i != facts::kFactCount; ++i) {
        text += (i == 0 ? "" : ",\n") + entryOf(facts::kFacts[i], m_answers[i]);
    }
    text += "\n  }";
    if (!shutdowns.empty()) {
        text += ",\n  \"shutdowns\": [\n";
        for (const Shutdown& shutdown : shutdowns)
            text += (&shutdown == &shutdowns.front() ? "" : ",\n") + entryOf(shutdown);
        text += "\n  ]";
    }
    replaceFile(m_path, text + "\n}\n");
}

}  // namespace vexa::probe
