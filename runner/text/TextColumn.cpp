#include "text/TextColumn.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kBytesOfASurrogatePair = 4;

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

// Returns the size of the character that starts at `at`. In invalid UTF-8, stray bytes belong to the one before.
std::size_t characterSize(std::string_view line, std::size_t at) {
    std::size_t end = at + 1;
    while (end < line.size() && isContinuation(line[end])) ++end;
    return end - at;
}

std::size_t columnsOf(std::size_t characterSize, ColumnUnit_e unit) {
    if (unit == ColumnUnit_e::Utf8) return characterSize;
    return characterSize == kBytesOfASurrogatePair ? 2 : 1;
}

}  // namespace

std::size_t columnAt(std::string_view line, std::size_t at, ColumnUnit_e unit) {
    std::size_t column = 0;
    for (std::size_t start = 0; start < line.size();) {
        const std::size_t size = characterSize(line, start);
        if (start + size > at) break;
        start += size;
        column += columnsOf(size, unit);
    }
    return column;
}

std::size_t byteAt(std::string_view line, std::size_t column, ColumnUnit_e unit) {
    std::size_t start = 0;
    for (std::size_t passed = 0; start < line.size();) {
        const std::size_t size = characterSize(line, start);
        passed += columnsOf(size, unit);
        if (passed > column) break;
        start += size;
    }
    return start;
}

}  // namespace vexa::runner
