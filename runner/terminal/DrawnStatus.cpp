#include "terminal/DrawnStatus.h"

#include <unistd.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "system/Descriptor.h"
#include "terminal/Terminal.h"
#include "terminal/TextWidth.h"

namespace vexa::runner {
namespace {

constexpr std::chrono::milliseconds kRedrawInterval{100};
constexpr std::size_t kBarWidth = 20;
constexpr std::size_t kReadableWidth = 8;  // a text is not cut shorter for other parts
constexpr int kHint = 1;                   // less important than the whole text
constexpr int kMostImportant = 5;
constexpr std::size_t kPercentWidth = 3;
constexpr int kSecondsAMinute = 60;
constexpr int kMinutesAnHour = 60;
constexpr const char* kGap = "  ";
constexpr const char* kGreen = "\033[32m";
constexpr const char* kPlain = "\033[0m";

std::string twoDigits(long number) { return (number < 10 ? "0" : "") + std::to_string(number); }

std::string timeText(std::chrono::seconds time) {
    const auto seconds = static_cast<long>(time.count());
    const long minutes = seconds / kSecondsAMinute;
    const std::string end = ':' + twoDigits(seconds % kSecondsAMinute);
    if (minutes < kMinutesAnHour) return std::to_string(minutes) + end;
    return std::to_string(minutes / kMinutesAnHour) + ':' + twoDigits(minutes % kMinutesAnHour) + end;
}

std::string barText(int percent) {
    const std::size_t done = static_cast<std::size_t>(percent) * kBarWidth / standin::kAllDone;
    return '[' + std::string(done, '#') + std::string(kBarWidth - done, ' ') + ']';
}

std::string percentText(int percent) {
    const std::string number = std::to_string(percent);
    return std::string(kPercentWidth - number.size(), ' ') + number + " %";
}

// Assumes that each percent takes the same time.
std::string remainingText(int percent, std::chrono::seconds elapsed) {
    if (percent <= 0 || percent >= standin::kAllDone || elapsed.count() == 0) return "";
    return timeText(elapsed * (standin::kAllDone - percent) / percent) + " left";
}

std::string stopText(const standin::StatusLine& line, bool isStopping) {
    if (isStopping) return "stopping";
    return line.showStopButton ? "Ctrl-C stops" : "";
}

// A part of the picture beside the text. The least important part is dropped first.
struct Part {
    std::string text;
    int importance;
    std::string separator;
};

std::vector<Part> partsOf(const standin::StatusLine& line, const StatusFrame& frame) {
    std::vector<Part> parts;
    const auto add = [&](std::string text, int importance, const char* separator = kGap) {
        if (!text.empty()) parts.push_back({std::move(text), importance, separator});
    };
    if (line.showBar) {
        add(barText(line.percent), 2);
        add(percentText(line.percent), kMostImportant, " ");
    }
    add(timeText(frame.elapsed), 3);
    if (line.showBar) add(remainingText(line.percent, frame.elapsed), kHint, ", ");
    add(stopText(line, frame.isStopping), frame.isStopping ? 4 : 0);
    return parts;
}

std::size_t totalWidthOf(const std::vector<Part>& parts) {
    std::size_t width = 0;
    for (const Part& part : parts) width += part.separator.size() + part.text.size();
    return width;
}

// Drops parts of at most this importance until the others fit beside a text of this width.
void dropUntilFit(std::vector<Part>& parts, std::size_t columns, std::size_t textWidth, int importance) {
    const auto isLess = [](const Part& a, const Part& b) { return a.importance < b.importance; };
    while (!parts.empty() && textWidth + totalWidthOf(parts) > columns) {
        const auto least = std::min_element(parts.begin(), parts.end(), isLess);
        if (least->importance > importance) return;
        parts.erase(least);
    }
}

// Adds colours last: they take no columns.
std::string joined(std::string text, const std::vector<Part>& parts, bool inColour) {
    for (const Part& part : parts) {
        if (!text.empty()) text += part.separator;
        const bool isBar = part.text.front() == '[';
        text += inColour && isBar ? kGreen + part.text + kPlain : part.text;
    }
    return text;
}

// The status line as one line of a terminal:
//
//     Reading rows  [########            ]  42 %  0:05, 0:07 left  Ctrl-C stops
//
// In a narrow window the least important parts are left out first; then the text is cut.
std::string pictureOf(const standin::StatusLine& line, const StatusFrame& frame, bool inColour) {
    const std::size_t columns = frame.columns - 1;  // after the last column, some terminals go to the next line at once
    const std::string text = asOneLine(line.text);
    std::vector<Part> parts = partsOf(line, frame);
    dropUntilFit(parts, columns, widthOf(text), kHint);
    dropUntilFit(parts, columns, std::min(widthOf(text), kReadableWidth), kMostImportant);
    return joined(cutToWidth(text, columns - totalWidthOf(parts)), parts, inColour);
}

bool isSame(const StatusFrame& a, const StatusFrame& b) {
    return a.elapsed == b.elapsed && a.isStopping == b.isStopping && a.columns == b.columns;
}

}  // namespace

DrawnStatus::DrawnStatus(std::function<bool()> isStopping, std::atomic<bool>& isDrawn)
    : m_isStopping(std::move(isStopping)), m_inColour(wantsColour()), m_isDrawn(isDrawn) {}

void DrawnStatus::show(const standin::StatusLine& line) {
    // A lower percentage means that the task was started again.
    if (line.active && (!m_line.active || line.percent < m_line.percent)) m_begin = Clock::now();
    m_line = line;
    m_hasChanged = true;
    if (line.active) {
        refresh();
    } else {
        clear();
    }
}

void DrawnStatus::refresh() {
    if (!m_line.active || Clock::now() - m_lastDrawing < kRedrawInterval) return;
    if (m_hasChanged || !m_isDrawn || !isSame(m_drawn, frame())) draw();
}

void DrawnStatus::clear() {
    if (m_isDrawn.exchange(false)) writeAll(STDERR_FILENO, kClearLine);
}

StatusFrame DrawnStatus::frame() const {
    return {std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - m_begin), m_isStopping(),
            columnsOf(STDERR_FILENO)};
}

void DrawnStatus::draw() {
    m_hasChanged = false;
    m_drawn = frame();
    m_isDrawn = true;
    // One write avoids flicker.
    writeAll(STDERR_FILENO, kClearLine + pictureOf(m_line, m_drawn, m_inColour) + '\r');
    m_lastDrawing = Clock::now();
}

}  // namespace vexa::runner
