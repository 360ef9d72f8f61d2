#include "formats/DescriptionFile.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <filesystem>
#include <functional>
#include <set>
#include <system_error>

#include "formats/JsonText.h"
#include "system/files/WholeFile.h"
#include "terminal/Console.h"
#include "text/Joined.h"
#include "text/NearNames.h"
#include "text/Printable.h"
#include "text/ShortText.h"
#include "vexa/InvalidArgumentException.h"
#include "vexa/toolbox/Set.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kMostBytes = std::size_t{4} * 1024 * 1024;
constexpr std::size_t kMostProblems = 20;
constexpr std::size_t kMostItems = 1000;        // of an array
constexpr std::size_t kMostCharacters = 10000;  // of a text
constexpr std::size_t kMostOfAName = 64;

constexpr char kSchemaText[] = {
#include "commands.schema.json.inc"
};

// A wrong value, and why it is wrong.
struct Refusal {
    std::string path;
    std::size_t at;
    std::string reason;
};

// A value of the description, and its JSON pointer.
struct Node {
    const JsonValue& value;
    std::string path;

    [[noreturn]] void refuse(const std::string& reason) const { throw Refusal{path, value.at, reason}; }

    template <class Value>
    const Value& as(const char* expected) const {
        if (const auto* const held = std::get_if<Value>(&value.value)) return *held;
        refuse(std::string("expected ") + expected);
    }
};

std::string quotedText(std::string_view text) { return '"' + shortText(text) + '"'; }

// ": is X meant?" or a list of what is allowed.
std::string hintFor(const std::string& word, const std::vector<std::string>& allowed) {
    const std::vector<std::string> near = nearNames(word, allowed);
    return near.empty() ? "; expected " + alternatives(allowed) : "; is " + alternatives(near) + " meant?";
}

// The members of a JSON object.
class ObjectMembers {
public:
    ObjectMembers(const Node& node, const std::vector<std::string>& allowed) : m_node(node) {
        std::set<std::string> names;
        for (const JsonMember& member : node.as<JsonValue::Object>("an object")) {
            if (std::find(allowed.begin(), allowed.end(), member.name) == allowed.end()) {
                throw Refusal{node.path, member.at,
                              "unknown member " + quotedText(member.name) + hintFor(member.name, allowed)};
            }
            if (!names.insert(member.name).second) {
                throw Refusal{node.path, member.at, "the member " + quotedText(member.name) + " is given twice"};
            }
        }
    }

    std::optional<Node> find(const std::string& name) const {
        for (const JsonMember& member : std::get<JsonValue::Object>(m_node.value.value)) {
            if (member.name == name) return Node{member.value, m_node.path + '/' + name};
        }
        return std::nullopt;
    }

    Node required(const std::string& name) const {
        const auto found = find(name);
        if (!found) m_node.refuse("the member \"" + name + "\" is missing");
        return *found;
    }

    bool truth(const std::string& name, bool without) const {
        const auto found = find(name);
        return found ? found->as<bool>("true or false") : without;
    }

private:
    const Node& m_node;
};

// ---- Texts

const std::string& lineOf(const Node& node) {
    const auto& text = node.as<std::string>("a text");
    if (text.size() > kMostCharacters) node.refuse("the text is longer than 10000 bytes");
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' && c != '\t'; };
    if (std::any_of(text.begin(), text.end(), isControl)) node.refuse("expected a text of one line");
    return text;
}

const std::string& filledLineOf(const Node& node) {
    const std::string& text = lineOf(node);
    if (text.find_first_not_of(" \t") == std::string::npos) node.refuse("expected a text that is not empty");
    return text;
}

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isLetterOrDigit(char c) { return isLetter(c) || (c >= '0' && c <= '9'); }

// A name has letters, digits and `others`, and starts with a letter.
const std::string& nameOf(const Node& node, std::string_view others) {
    const std::string& name = lineOf(node);
    const auto fits = [&](char c) { return isLetterOrDigit(c) || others.find(c) != std::string_view::npos; };
    const bool isName = !name.empty() && isLetter(name.front()) && std::all_of(name.begin(), name.end(), fits);
    if (isName && name.size() <= kMostOfAName) return name;
    std::string expected = "expected a name of at most 64 letters and digits";
    for (const char c : others) expected += std::string(", '") + c + '\'';
    node.refuse(expected + ", with a letter first, but found " + quotedText(name));
}

template <class Item>
std::vector<Item> listOf(const std::optional<Node>& node, const std::function<Item(const Node&)>& read) {
    std::vector<Item> items;
    if (!node) return items;
    const auto& values = node->as<JsonValue::Array>("an array");
    if (values.size() > kMostItems) node->refuse("the array has more than 1000 items");
    for (const JsonValue& value : values) {
        items.push_back(read(Node{value, node->path + '/' + std::to_string(items.size())}));
    }
    return items;
}

std::vector<std::string> textLinesOf(const std::optional<Node>& node) {
    return listOf<std::string>(node, [](const Node& item) { return filledLineOf(item); });
}

// ---- Numbers

std::string shortestText(double value) {
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

// The integer in a text, because JSON tools cannot write all integers of 64 bits.
std::optional<DescribedNumber> integerIn(const std::string& text) {
    const char* const end = text.data() + text.size();
    std::uint64_t positive = 0;
    if (std::from_chars(text.data(), end, positive).ptr == end && std::to_string(positive) == text) {
        return DescribedNumber{static_cast<long double>(positive), text};
    }
    std::int64_t negative = 0;
    if (std::from_chars(text.data(), end, negative).ptr == end && std::to_string(negative) == text) {
        return DescribedNumber{static_cast<long double>(negative), text};
    }
    return std::nullopt;
}

DescribedNumber integerOf(const Node& node, OptionType_e type) {
    std::optional<DescribedNumber> number;
    if (const auto* const integer = std::get_if<std::int64_t>(&node.value.value)) {
        number = DescribedNumber{static_cast<long double>(*integer), std::to_string(*integer)};
    } else if (const auto* const text = std::get_if<std::string>(&node.value.value)) {
        number = integerIn(*text);
    }
    const DescribedNumber least = leastOf(type);
    const DescribedNumber greatest = greatestOf(type);
    if (!number || number->value < least.value || number->value > greatest.value) {
        node.refuse("expected an integer from " + least.text + " to " + greatest.text);
    }
    return *number;
}

DescribedNumber numberOf(const Node& node, OptionType_e type) {
    if (type != OptionType_e::Double) return integerOf(node, type);
    if (const auto* const integer = std::get_if<std::int64_t>(&node.value.value)) {
        return {static_cast<long double>(*integer), std::to_string(*integer)};
    }
    const double value = node.as<double>("a number");
    return {value, shortestText(value)};
}

// ---- Options

toolbox::Set setIn(const Node& node) {
    const auto& text = node.as<std::string>("a set as text, such as \"[1-3,5]\"");
    try {
        toolbox::Set set;
        set.assign(text);
        return set;
    } catch (const InvalidArgumentException& refusal) {
        node.refuse(refusal.what());
    }
}

std::string choiceOf(const Node& node, const std::vector<std::string>& values) {
    const auto& value = node.as<std::string>("one of the values");
    if (std::find(values.begin(), values.end(), value) == values.end()) {
        node.refuse(quotedText(value) + " is not one of the values" + hintFor(value, values));
    }
    return value;
}

class OptionReader {
public:
    OptionReader(const Node& node, CommandKind_e kind)
        : m_kind(kind),
          m_node(node),
          m_members(node, {"name", "type", "help", "default", "without", "min", "max", "values", "required",
                           "repeatable", "mayBeEmpty", "escapes"}) {}

    OptionDescription read() {
        m_option.name = nameOf(m_members.required("name"), m_kind == CommandKind_e::Command ? "" : "_-.");
        m_option.type = type();
        m_option.help = filledLineOf(m_members.required("help"));
        m_option.isRequired = m_members.truth("required", false);
        m_option.isRepeatable = m_members.truth("repeatable", false);
        readLimits();
        readDefault();
        return m_option;
    }

private:
    OptionType_e type() const {
        const Node node = m_members.required("type");
        const auto& name = node.as<std::string>("the name of a type");
        std::vector<std::string> names;
        for (const OptionType_e type : typesOf(m_kind)) {
            if (name == runner::nameOf(type)) return type;
            names.emplace_back(runner::nameOf(type));
        }
        const std::string kind = std::string(" of an option of kind ") + runner::nameOf(m_kind);
        node.refuse(quotedText(name) + " is no type" + kind + hintFor(name, names));
    }

    // Refuses a member that means nothing for the type.
    std::optional<Node> memberOf(const std::string& name, bool isMeaningful) const {
        auto node = m_members.find(name);
        if (node && !isMeaningful) {
            node->refuse(std::string("an option of type ") + runner::nameOf(m_option.type) + " has no \"" + name + '"');
        }
        return node;
    }

    void readLimits() {
        const OptionType_e type = m_option.type;
        const bool isSet = type == OptionType_e::Set;
        const OptionType_e limits = isSet ? OptionType_e::Int64 : type;  // of the members of a set
        const auto min = memberOf("min", isNumber(type) || isSet);
        const auto max = memberOf("max", isNumber(type) || isSet);
        if (min) m_option.min = numberOf(*min, limits);
        if (max) m_option.max = numberOf(*max, limits);
        if (min && max && m_option.min->value > m_option.max->value)
            max->refuse("the maximum is less than the minimum");
        memberOf("mayBeEmpty", isSet || type == OptionType_e::String);
        m_option.mayBeEmpty = m_members.truth("mayBeEmpty", true);
        memberOf("escapes", isQuoted(type) && m_kind == CommandKind_e::Processor);
        m_option.hasEscapes = m_members.truth("escapes", true) && m_kind == CommandKind_e::Processor;
        readValues();
    }

    void readValues() {
        const bool isChoice = m_option.type == OptionType_e::Choice;
        const auto values = memberOf("values", isChoice);
        if (!isChoice) return;
        if (!values) m_members.required("values");
        m_option.values =
            listOf<std::string>(values, [this](const Node& item) { return writable(filledLineOf(item), item); });
        if (m_option.values.empty()) values->refuse("expected at least one value");
        requireDifferent(*values);
    }

    void requireDifferent(const Node& values) const {
        std::set<std::string> different;
        for (const std::string& value : m_option.values) {
            if (!different.insert(value).second) values.refuse(quotedText(value) + " is given twice");
        }
    }

    void readDefault() {
        const auto without = m_members.find("without");
        if (without) m_option.without = filledLineOf(*without);
        const auto node = m_members.find("default");
        if (node && m_option.isRequired) node->refuse("a required option has no default");
        if (without && m_option.isRequired) without->refuse("a required option is never absent");
        if (node && without) without->refuse("\"default\" already says what the command does without the option");
        if (node) m_option.defaultValue = defaultOf(*node);
    }

    std::string defaultOf(const Node& node) const {
        switch (m_option.type) {
            case OptionType_e::Boolean: return node.as<bool>("true or false") ? "TRUE" : "FALSE";
            case OptionType_e::String: return writable(lineOf(node), node);
            case OptionType_e::Set: return setInRange(node);
            case OptionType_e::Choice: return choiceOf(node, m_option.values);
            default: return numberInRange(node);
        }
    }

    // A command must be able to give an option its default.
    const std::string& writable(const std::string& text, const Node& node) const {
        if (text.empty()) requireNotEmpty(node);
        const bool hasBothQuotes = text.find('\'') != std::string::npos && text.find('"') != std::string::npos;
        if (hasBothQuotes && !m_option.hasEscapes) node.refuse("a text with both quotes needs escapes");
        return text;
    }

    std::string numberInRange(const Node& node) const {
        const DescribedNumber number = numberOf(node, m_option.type);
        requireInRange(number.value, number.value, node);
        return number.text;
    }

    std::string setInRange(const Node& node) const {
        const toolbox::Set set = setIn(node);
        if (set.isEmpty()) {
            requireNotEmpty(node);
        } else {
            requireInRange(static_cast<long double>(set.ranges().front().first),
                           static_cast<long double>(set.ranges().back().last), node);
        }
        return set.toString();
    }

    void requireInRange(long double least, long double greatest, const Node& node) const {
        if (m_option.min && least < m_option.min->value) node.refuse("the default is less than the minimum");
        if (m_option.max && greatest > m_option.max->value) node.refuse("the default is greater than the maximum");
    }

    void requireNotEmpty(const Node& node) const {
        if (!m_option.mayBeEmpty) node.refuse("the default is empty, but \"mayBeEmpty\" is false");
    }

    CommandKind_e m_kind;
    Node m_node;
    ObjectMembers m_members;
    OptionDescription m_option;
};

// ---- Commands

std::string upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
    return text;
}

class DescriptionReader {
public:
    std::vector<Refusal> refusals;

    AddOnDescription read(const JsonValue& root) {
        AddOnDescription description;
        const Node node{root, ""};
        guarded([&] {
            const ObjectMembers members(node, {"$schema", "addon", "commands"});
            description.addOn = nameOf(members.required("addon"), "_-");
            const Node commands = members.required("commands");
            description.commands =
                itemsOf<CommandDescription>(commands, [this](const Node& item) { return commandOf(item); });
        });
        return description;
    }

private:
    // Goes on after a wrong part, so that all wrong parts are reported.
    template <class Work>
    void guarded(const Work& work) {
        try {
            work();
        } catch (const Refusal& refusal) {
            refusals.push_back(refusal);
        }
    }

    // Reads the items of an array that have names, and leaves out the wrong ones.
    template <class Item, class Read>
    std::vector<Item> itemsOf(const Node& array, const Read& read) {
        std::vector<Item> items;
        std::set<std::string> names;
        listOf<bool>(array, [&](const Node& node) {
            guarded([&] {
                Item item = read(node);
                if (!names.insert(upperCase(item.name)).second) {
                    ObjectMembers(node, namesIn(node))
                        .required("name")
                        .refuse(quotedText(item.name) + " is given twice");
                }
                items.push_back(std::move(item));
            });
            return true;
        });
        return items;
    }

    static std::vector<std::string> namesIn(const Node& node) {
        std::vector<std::string> names;
        for (const JsonMember& member : std::get<JsonValue::Object>(node.value.value)) names.push_back(member.name);
        return names;
    }

    CommandDescription commandOf(const Node& node) {
        const ObjectMembers members(node, {"name", "kind", "purpose", "options", "before", "examples"});
        CommandDescription command;
        command.name = nameOf(members.required("name"), "_-.");
        command.kind = kindOf(members.required("kind"));
        command.purpose = filledLineOf(members.required("purpose"));
        if (const auto options = members.find("options")) {
            command.options = itemsOf<OptionDescription>(
                *options, [&](const Node& item) { return OptionReader(item, command.kind).read(); });
        }
        command.before = textLinesOf(members.find("before"));
        command.examples = textLinesOf(members.find("examples"));
        return command;
    }

    static CommandKind_e kindOf(const Node& node) {
        const auto& name = node.as<std::string>(R"("command" or "processor")");
        for (const CommandKind_e kind : {CommandKind_e::Command, CommandKind_e::Processor}) {
            if (name == runner::nameOf(kind)) return kind;
        }
        node.refuse(quotedText(name) + " is no kind of command" + hintFor(name, {"command", "processor"}));
    }
};

}  // namespace

ReadDescription parseDescription(const std::string& text, const std::string& file) {
    ReadDescription result;
    try {
        DescriptionReader reader;
        result.description = reader.read(parseJson(text));
        for (const Refusal& refusal : reader.refusals) {
            if (result.problems.size() == kMostProblems) break;
            result.problems.push_back(file + ": " + (refusal.path.empty() ? "/" : refusal.path) + ": " +
                                      printableLine(refusal.reason) + " (" + placeIn(text, refusal.at) + ')');
        }
    } catch (const JsonError& error) {
        result.problems.push_back(file + ':' + placeIn(text, error.at) + ": " + printableLine(error.what()));
    }
    return result;
}

std::optional<AddOnDescription> readDescription(const std::string& file) {
    try {
        ReadDescription result = parseDescription(readInput(file, kMostBytes), file);
        for (const std::string& problem : result.problems) tell(problem);
        if (result.problems.empty()) return std::move(result.description);
    } catch (const std::system_error& error) {
        tell(file, "cannot be read: " + error.code().message());
    }
    return std::nullopt;
}

std::string descriptionBeside(const std::string& addOnFile) {
    const std::filesystem::path path(addOnFile);
    const std::filesystem::path stem = path.extension() == ".so" ? path.stem() : path.filename();
    return (path.parent_path() / stem).string() + kDescriptionEnding;
}

std::string_view descriptionSchema() { return {kSchemaText, sizeof kSchemaText}; }

}  // namespace vexa::runner
