#pragma once

#include <string>
#include <string_view>

namespace vexa::runner {

/// Whom a process tells what is to be kept of its work: the process that watches it, or itself.
///
/// Threads: safe from any.
class NotesInterface {
public:
    NotesInterface() = default;
    NotesInterface(const NotesInterface&) = delete;
    NotesInterface& operator=(const NotesInterface&) = delete;
    virtual ~NotesInterface() = default;

    /// Tells \p text, which is of the kind \p kind.
    virtual void tell(char kind, std::string_view text) = 0;
    /// The same, and waits for the answer. It is empty when nobody answers.
    virtual std::string ask(char kind, std::string_view text) = 0;
};

}  // namespace vexa::runner
