#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <tuple>
#include <vector>

#include "stacks/Frame.h"
#include "stacks/Symbols.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {

/// What messages show of a stack.
enum class ShownStack_e { OwnLine, Whole };

/// Adds the lines of the add-on's source to the places of findings.
/// Threads: any thread may call the functions.
class SourceFinder {
public:
    explicit SourceFinder(ShownStack_e shown = ShownStack_e::OwnLine) : m_shown(shown) {}

    /// Adds the sources of both places.
    void complete(standin::Finding& finding);
    /// Adds the source of the failure of a command. A user of a macro can do without symbols and offsets, so there is
    /// none without a line, unless whole stacks are shown.
    void completeFailure(standin::Place& place);

    /// Whether a place of a finding was found that has no line, because the add-on has no debug information.
    bool lacksLines() const;

private:
    void complete(standin::Place& place);
    /// The function that the host called, at the start or the end of a command; empty if it is unknown.
    Stack functionOf(const std::vector<standin::CodePlace>& stack);
    /// The frames of the first code of the add-on, the innermost first; empty if there is none.
    Stack ownFramesOf(const std::vector<standin::CodePlace>& stack);
    /// All frames, without those of the host before the first and after the last call of the add-on.
    Stack framesOf(const std::vector<standin::CodePlace>& stack);
    const Stack& framesAt(const standin::CodePlace& place);

    ShownStack_e m_shown;
    mutable std::mutex m_guard;
    Symbols m_symbols;
    std::map<std::tuple<std::string, std::uintptr_t, std::string>, Stack> m_known;
    bool m_lacksLines = false;
};

}  // namespace vexa::runner
