#include "terminal/WrappedText.h"

#include <algorithm>

namespace vexa::runner {

std::string wrapped(std::string_view text, std::size_t width, const std::string& first) {
    std::string lines = first;
    std::size_t column = first.size();
    bool isLineEmpty = true;
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(word.size() + 1, text.size()));
        if (!isLineEmpty && column + 1 + word.size() > width) {
            lines += '\n' + std::string(first.size(), ' ');
            column = first.size();
            isLineEmpty = true;
        }
        if (!isLineEmpty) lines += ' ';
        column += word.size() + (isLineEmpty ? 0 : 1);
        lines += word;
        isLineEmpty = false;
    }
    return lines + '\n';
}

}  // namespace vexa::runner
