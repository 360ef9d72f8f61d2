#include "commands/lsp/FileUri.h"

#include <charconv>
#include <cstddef>

#include "text/StartsWith.h"

namespace vexa::runner {
namespace {

constexpr std::string_view kFile = "file://";
constexpr std::string_view kThisComputer = "localhost";
constexpr int kHexadecimal = 16;

// Replaces each `%HH` by its byte. Other text stays.
std::string decoded(std::string_view text) {
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        unsigned char byte = 0;
        const char* const digits = text.data() + at + 1;
        const bool isCode = text[at] == '%' && at + 2 < text.size() &&
                            std::from_chars(digits, digits + 2, byte, kHexadecimal).ptr == digits + 2;
        bytes += isCode ? static_cast<char>(byte) : text[at];
        if (isCode) at += 2;
    }
    return bytes;
}

}  // namespace

std::string pathOfUri(std::string_view uri) {
    if (!startsWith(uri, kFile)) return "";
    uri.remove_prefix(kFile.size());
    if (startsWith(uri, kThisComputer)) uri.remove_prefix(kThisComputer.size());
    const std::string path = startsWith(uri, "/") ? decoded(uri) : "";
    return path.find('\0') == std::string::npos ? path : "";
}

}  // namespace vexa::runner
