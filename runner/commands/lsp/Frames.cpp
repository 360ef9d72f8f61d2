#include "commands/lsp/Frames.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <utility>

#include "system/LastError.h"
#include "text/Printable.h"
#include "text/ShortText.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kBytesAtATime = std::size_t{64} * 1024;
constexpr std::size_t kMostOfALine = 4096;
constexpr std::string_view kSizeField = "content-length:";

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Returns the start of the field in the line; npos if the line has none.
std::size_t findSizeField(std::string_view line) {
    const auto found = std::search(line.begin(), line.end(), kSizeField.begin(), kSizeField.end(),
                                   [](char a, char b) { return lower(a) == b; });
    return found == line.end() ? std::string_view::npos : static_cast<std::size_t>(found - line.begin());
}

std::string_view withoutBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    return text.substr(0, text.find_last_not_of(" \t") + 1);
}

// Returns the size in a field; nothing if it is no number, or too large for one.
std::optional<std::size_t> sizeIn(std::string_view text) {
    std::size_t size = 0;
    const char* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, size);
    if (last != end || error != std::errc()) return std::nullopt;
    return size;
}

// An editor may pass a descriptor whose reads do not wait.
ssize_t waitAndRead(int descriptor, char* bytes, std::size_t size) {
    while (true) {
        const ssize_t count = ::read(descriptor, bytes, size);
        if (count >= 0 || (errno != EINTR && errno != EAGAIN)) return count;
        pollfd input{descriptor, POLLIN, 0};
        ::poll(&input, 1, -1);
    }
}

}  // namespace

InputFrame FrameReader::next() {
    std::optional<std::size_t> size;
    for (std::string line; readLine(line);) {
        if (!line.empty()) {
            if (auto refused = takeField(line, size)) return *std::move(refused);
        } else if (size) {
            m_isLost = false;
            return readMessage(*size);
        } else if (!m_isLost) {
            return refuse("the header has no Content-Length");
        }
    }
    return {InputFrame::Kind_e::End, ""};
}

// Bytes that are skipped may stand before the field on the same line.
std::optional<InputFrame> FrameReader::takeField(std::string_view line, std::optional<std::size_t>& size) {
    const std::size_t at = findSizeField(line);
    const bool isField = m_isLost ? at != std::string_view::npos : at == 0;
    if (!isField) {
        if (m_isLost || line.find(':') != std::string_view::npos) return std::nullopt;
        return refuse("expected a header with Content-Length, but found " + shortText(printableLine(line)));
    }
    const std::string_view number = withoutBlanks(line.substr(at + kSizeField.size()));
    size = sizeIn(number);
    if (size && *size <= kMostBytes) return std::nullopt;
    size.reset();
    if (m_isLost) return std::nullopt;
    return refuse("expected a Content-Length from 0 to " + std::to_string(kMostBytes) + ", but found " +
                  shortText(printableLine(number)));
}

InputFrame FrameReader::refuse(std::string reason) {
    m_isLost = true;
    return {InputFrame::Kind_e::Refused, std::move(reason)};
}

// Reads more bytes after those that were not taken. Returns false at the end of the input.
bool FrameReader::fill() {
    m_read.erase(0, std::exchange(m_at, 0));
    const std::size_t kept = m_read.size();
    m_read.resize(kept + kBytesAtATime);
    const ssize_t count = waitAndRead(m_descriptor, &m_read[kept], kBytesAtATime);
    m_read.resize(kept + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (count < 0) throwLastError();
    return count > 0;
}

// Sets `line` to the next line without its end; to its last bytes if it is long. Returns false if there is none.
bool FrameReader::readLine(std::string& line) {
    line.clear();
    while (true) {
        const std::size_t end = std::min(m_read.find('\n', m_at), m_read.size());
        line.append(m_read, m_at, end - m_at);
        if (line.size() > kMostOfALine) line.erase(0, line.size() - kMostOfALine);
        const bool isWhole = end < m_read.size();
        m_at = end + (isWhole ? 1 : 0);
        if (isWhole) break;
        if (!fill()) return false;
    }
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return true;
}

InputFrame FrameReader::readMessage(std::size_t size) {
    while (m_read.size() - m_at < size) {
        if (!fill()) return {InputFrame::Kind_e::End, ""};
    }
    InputFrame frame{InputFrame::Kind_e::Message, m_read.substr(m_at, size)};
    m_at += size;
    return frame;
}

std::string framed(const std::string& message) {
    return "Content-Length: " + std::to_string(message.size()) + "\r\n\r\n" + message;
}

}  // namespace vexa::runner
