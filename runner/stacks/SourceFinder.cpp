#include "stacks/SourceFinder.h"

#include <algorithm>
#include <string>
#include <vector>

#include "stacks/OwnCode.h"
#include "stacks/StackText.h"

namespace vexa::runner {
namespace {

using standin::CodePlace;

// Returns true for code of the add-on itself.
bool isOwn(const CodePlace& place) { return place.isAddOn && !isSharedLibrary(place.object); }

// Returns true for code of the add-on, and of the libraries through which it calls the host.
bool isOutsideHost(const CodePlace& place) { return isOwn(place) || isBetweenAddOnAndHost(place.object); }

std::string withoutLastLineFeed(std::string text) {
    if (!text.empty()) text.pop_back();
    return text;
}

// Returns the frame that the author of the add-on should look at. `frames` is not empty.
const Frame& ownFrame(const Stack& frames) {
    const auto own = std::find_if(frames.begin(), frames.end(), isOwnSource);
    return own == frames.end() ? frames.front() : *own;
}

}  // namespace

void SourceFinder::complete(standin::Finding& finding) {
    const std::lock_guard<std::mutex> lock(m_guard);
    for (standin::Place* const place : {finding.opened ? &*finding.opened : nullptr, &finding.seen}) {
        if (place == nullptr) continue;
        complete(*place);
        m_lacksLines = m_lacksLines || (!place->source.text.empty() && place->source.line == 0);
    }
}

void SourceFinder::completeFailure(standin::Place& place) {
    const std::lock_guard<std::mutex> lock(m_guard);
    complete(place);
    if (place.source.line == 0 && m_shown == ShownStack_e::OwnLine) place.source = {};
}

void SourceFinder::complete(standin::Place& place) {
    if (place.stack == nullptr) return;
    const bool isFunction = place.call == 0 && place.stack->size() == 1;  // of the add-on, which the host called
    const Stack own = isFunction ? functionOf(*place.stack) : ownFramesOf(*place.stack);
    if (own.empty()) return;
    const Frame& frame = ownFrame(own);
    const bool isWhole = m_shown == ShownStack_e::Whole && !isFunction;
    place.source = {frame.function, frame.file, frame.line, "at " + textOf(frame)};
    if (isWhole) place.source.text = withoutLastLineFeed(textOf(framesOf(*place.stack)));
}

bool SourceFinder::lacksLines() const {
    const std::lock_guard<std::mutex> lock(m_guard);
    return m_lacksLines;
}

Stack SourceFinder::functionOf(const std::vector<CodePlace>& stack) {
    if (stack.empty() || !isOwn(stack.front())) return {};
    const CodePlace& function = stack.front();
    return {m_symbols.functionAt(function.object, function.offset, function.buildId)};
}

// Goes on to the next code of the add-on if an inline function of a library called the host.
Stack SourceFinder::ownFramesOf(const std::vector<CodePlace>& stack) {
    Stack own;
    for (const CodePlace& place : stack) {
        if (!isOwn(place)) continue;
        const Stack& frames = framesAt(place);
        own.insert(own.end(), frames.begin(), frames.end());
        if (std::any_of(frames.begin(), frames.end(), isOwnSource)) break;
    }
    return own;
}

Stack SourceFinder::framesOf(const std::vector<CodePlace>& stack) {
    const auto begin = std::find_if(stack.begin(), stack.end(), isOutsideHost);
    const auto end = std::find_if(stack.rbegin(), stack.rend(), isOwn).base();
    Stack frames;
    for (auto place = begin; place < end; ++place) {
        const Stack& here = framesAt(*place);
        frames.insert(frames.end(), here.begin(), here.end());
    }
    return frames;
}

const Stack& SourceFinder::framesAt(const CodePlace& place) {
    Stack& frames = m_known[{place.object, place.offset, place.buildId}];
    if (frames.empty()) frames = m_symbols.framesAt(place.object, place.offset, place.buildId);
    return frames;
}

}  // namespace vexa::runner
