#include "stacks/PackedStacks.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace vexa::runner {
namespace {

// Names and paths contain no zero byte. A stack is the number of its fields, and these fields.
constexpr char kFieldEnd = '\0';
constexpr std::size_t kStackFields = 6;
constexpr std::size_t kFrameFields = 5;

using Fields = std::vector<std::string>;

void add(Fields& fields, const Frame& frame) {
    fields.insert(fields.end(),
                  {frame.function, frame.file, std::to_string(frame.line), frame.object, std::to_string(frame.offset)});
}

std::uint64_t numberOf(const std::string& digits) {
    std::uint64_t number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

Frame frameAt(const Fields& fields, std::size_t i) {
    return {fields[i], fields[i + 1], numberOf(fields[i + 2]), fields[i + 3], numberOf(fields[i + 4])};
}

ThreadStack stackOf(const Fields& fields) {
    ThreadStack stack;
    stack.thread = static_cast<pid_t>(numberOf(fields[0]));
    stack.leftOut = numberOf(fields[1]);
    stack.isCounted = fields[2].empty();
    stack.ownBegin = numberOf(fields[3]);
    stack.ownEnd = numberOf(fields[4]);
    stack.isFirst = !fields[5].empty();
    for (std::size_t i = kStackFields; i + kFrameFields <= fields.size(); i += kFrameFields) {
        stack.frames.push_back(frameAt(fields, i));
    }
    return stack;
}

// Takes a field from the start of `text`. Returns false if its end is missing.
bool take(std::string_view& text, std::string& field) {
    const std::size_t end = text.find(kFieldEnd);
    if (end == std::string_view::npos) return false;
    field = text.substr(0, end);
    text.remove_prefix(end + 1);
    return true;
}

}  // namespace

void pack(const ThreadStack& stack, std::string& text) {
    Fields fields = {std::to_string(stack.thread),   std::to_string(stack.leftOut), stack.isCounted ? "" : "more",
                     std::to_string(stack.ownBegin), std::to_string(stack.ownEnd),  stack.isFirst ? "first" : ""};
    for (const Frame& frame : stack.frames) add(fields, frame);
    text += std::to_string(fields.size()) + kFieldEnd;
    for (const std::string& field : fields) text += field + kFieldEnd;
}

std::vector<ThreadStack> unpackedStacks(std::string_view text) {
    std::vector<ThreadStack> stacks;
    for (std::string count; take(text, count);) {
        Fields fields(std::max<std::size_t>(numberOf(count), kStackFields));
        for (std::string& field : fields) {
            if (!take(text, field)) return stacks;
        }
        stacks.push_back(stackOf(fields));
    }
    return stacks;
}

}  // namespace vexa::runner
