#include "contract/messages/EventMessage.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <memory>
#include <type_traits>
#include <utility>

#include "vexastandin/HostFunctions.h"

namespace vexa::standin {
namespace {

constexpr std::size_t kLongestStack = 48;

using Time = std::chrono::steady_clock::time_point;

// Appends fields to the bytes of a message.
class Writer {
public:
    static constexpr bool kReads = false;

    template <class Number, std::enable_if_t<std::is_arithmetic_v<Number> || std::is_enum_v<Number>, int> = 0>
    void operator()(const Number& number) {
        bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
    }
    void operator()(const std::string& text) {
        const std::size_t size = std::min(text.size(), kLongestText);
        (*this)(static_cast<std::uint32_t>(size));
        bytes.append(text, 0, size);
    }

    std::string bytes;
};

// Reads the fields in the same order. After a field that is not there it reads nothing more.
class Reader {
public:
    static constexpr bool kReads = true;

    explicit Reader(std::string_view bytes) : m_bytes(bytes) {}

    template <class Number, std::enable_if_t<std::is_arithmetic_v<Number> || std::is_enum_v<Number>, int> = 0>
    void operator()(Number& number) {
        if (const char* const source = take(sizeof number)) std::memcpy(&number, source, sizeof number);
    }
    void operator()(std::string& text) {
        std::uint32_t size = 0;
        (*this)(size);
        if (const char* const source = take(size)) text.assign(source, size);
    }

    bool isWhole() const { return m_isWhole && m_bytes.empty(); }
    void refuse() { m_isWhole = false; }

private:
    const char* take(std::size_t size) {
        if (!m_isWhole || size > m_bytes.size()) {
            refuse();
            return nullptr;
        }
        const char* const taken = m_bytes.data();
        m_bytes.remove_prefix(size);
        return taken;
    }

    std::string_view m_bytes;
    bool m_isWhole = true;
};

template <class Archive>
void passTime(Archive& archive, std::conditional_t<Archive::kReads, Time&, const Time&> time) {
    std::int64_t ticks = time.time_since_epoch().count();
    archive(ticks);
    if constexpr (Archive::kReads) time = Time(Time::duration(ticks));
}

// The function is a text with a static lifetime, so the reader takes the one of the table.
template <class Archive>
void passFunction(Archive& archive, std::conditional_t<Archive::kReads, const char*&, const char* const&> name) {
    const auto& functions = hostFunctions();
    std::uint32_t index = 0;
    if constexpr (!Archive::kReads) {
        while (index != functions.size() && functions[index].name != std::string_view(name)) ++index;
    }
    archive(index);
    if constexpr (Archive::kReads) {
        if (index < functions.size()) {
            name = functions[index].name;
        } else {
            archive.refuse();
        }
    }
}

// Each pass() names the fields of a type once, for the writer and for the reader.

template <class Archive, class Text, std::enable_if_t<std::is_same_v<std::remove_const_t<Text>, std::string>, int> = 0>
void pass(Archive& archive, Text& text) {
    archive(text);
}

template <class Archive, class Event, std::enable_if_t<std::is_same_v<std::remove_const_t<Event>, CallEvent>, int> = 0>
void pass(Archive& archive, Event& call) {
    archive(call.number);
    passFunction(archive, call.function);
    archive(call.arguments);
    archive(call.result);
    archive(call.threw);
    archive(call.threadNumber);
    passTime(archive, call.time);
}

template <class Archive, class Code>
void passCode(Archive& archive, Code& code) {
    archive(code.object);
    archive(code.offset);
    archive(code.buildId);
    archive(code.isAddOn);
}

void passStack(Writer& archive, const std::shared_ptr<const CodeStack>& stack) {
    const auto count = static_cast<std::uint32_t>(stack == nullptr ? 0 : std::min(stack->size(), kLongestStack));
    archive(count);
    for (std::size_t i = 0; i != count; ++i) passCode(archive, (*stack)[i]);
}

void passStack(Reader& archive, std::shared_ptr<const CodeStack>& stack) {
    std::uint32_t count = 0;
    archive(count);
    if (count > kLongestStack) return archive.refuse();
    CodeStack read(count);
    for (CodePlace& code : read) passCode(archive, code);
    stack = std::make_shared<const CodeStack>(std::move(read));
}

template <class Archive, class Event, std::enable_if_t<std::is_same_v<std::remove_const_t<Event>, Place>, int> = 0>
void pass(Archive& archive, Event& place) {
    archive(place.call);
    archive(place.function);
    archive(place.command);
    archive(place.macroLine);
    archive(place.thread);
    passStack(archive, place.stack);
}

template <class Archive, class Event, std::enable_if_t<std::is_same_v<std::remove_const_t<Event>, EntryEvent>, int> = 0>
void pass(Archive& archive, Event& entry) {
    archive(entry.kind);
    archive(entry.addOnId);
    archive(entry.command);
    archive(entry.macroLine);
    archive(entry.succeeded);
    archive(entry.error);
    archive(entry.threadNumber);
    passTime(archive, entry.time);
    pass(archive, entry.failure);
}

template <class Archive, class Event, std::enable_if_t<std::is_same_v<std::remove_const_t<Event>, Finding>, int> = 0>
void pass(Archive& archive, Event& finding) {
    archive(finding.rule);
    archive(finding.severity);
    archive(finding.message);
    archive(finding.addOnId);
    bool isOpened = finding.opened.has_value();
    archive(isOpened);
    if constexpr (Archive::kReads) {
        if (isOpened) finding.opened.emplace();
    }
    if (finding.opened) pass(archive, *finding.opened);
    pass(archive, finding.seen);
    archive(finding.count);
    archive(finding.repeats);
}

// An empty content of the type that belongs to the kind; nothing for an unknown kind.
bool prepare(EventMessage& message) {
    switch (message.kind) {
        case Message_e::EntryBegan:
        case Message_e::EntryEnded: message.content = EntryEvent(); return true;
        case Message_e::CallBegan:
        case Message_e::CallEnded: message.content = CallEvent(); return true;
        case Message_e::FindingMade: message.content = Finding(); return true;
        case Message_e::AddOnMapped:
        case Message_e::Note: message.content = std::string(); return true;
    }
    return false;
}

}  // namespace

std::string bytesOf(const EventMessage& message) {
    Writer writer;
    writer(message.kind);
    writer(message.thread);
    std::visit([&](const auto& content) { pass(writer, content); }, message.content);
    return std::move(writer.bytes);
}

std::optional<EventMessage> readMessage(std::string_view bytes) {
    Reader reader(bytes);
    EventMessage message;
    reader(message.kind);
    reader(message.thread);
    if (!prepare(message)) return std::nullopt;
    std::visit([&](auto& content) { pass(reader, content); }, message.content);
    return reader.isWhole() ? std::optional(std::move(message)) : std::nullopt;
}

}  // namespace vexa::standin
