#pragma once

#include <string>
#include <string_view>

#include "system/NonCopyable.h"

namespace vexa::runner {

/// Asks the watching process for the stacks of all threads. The text is the number of the thread that asks. The answer
/// is a packed() StackReport, without this thread; empty if nobody watches the process.
inline constexpr char kStacksNote = 'S';

/// Receives the notes of a process that runs add-ons: recorded commands, results and other data to keep. The receiver
/// is in the watching process, or in the same process.
///
/// Threads: any thread may call the functions.
class NotesInterface : NonCopyable {
public:
    virtual ~NotesInterface() = default;

    /// Notes \p text. Sender and receiver agree on the meaning of \p kind.
    virtual void tell(char kind, std::string_view text) = 0;
    /// Notes \p text and returns the answer; empty if there is none.
    virtual std::string ask(char kind, std::string_view text) = 0;
};

}  // namespace vexa::runner
