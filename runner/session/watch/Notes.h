#pragma once

#include <string>
#include <string_view>

#include "system/NonCopyable.h"

namespace vexa::runner {

/// Gets the notes of a process that runs add-ons: what is to be kept of its work. They go to the process that watches
/// it, or stay in the process.
///
/// Threads: safe from any.
class NotesInterface : NonCopyable {
public:
    virtual ~NotesInterface() = default;

    /// Notes \p text. Sender and receiver agree on the meaning of \p kind.
    virtual void tell(char kind, std::string_view text) = 0;
    /// Notes \p text and returns the answer, which is empty if nobody answers.
    virtual std::string ask(char kind, std::string_view text) = 0;
};

}  // namespace vexa::runner
