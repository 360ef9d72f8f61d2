#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "contract/CodeStacks.h"
#include "contract/HostFunctionTable.h"
#include "vexastandin/Finding.h"
#include "vexastandin/Observer.h"

namespace vexa::standin {

/// One entry of the host into an add-on, from the call to its return. The time outside all add-ons is an entry, too.
struct Entry {
    Entry_e kind = Entry_e::Command;
    std::string addOnId;  ///< the add-on's id, or its file until the id is known; empty outside all add-ons
    std::string command;  ///< the command's text; empty if the entry is not a command
    std::string macroLine;
    std::size_t thread = 0;                       ///< the number of the thread that entered; 0 outside all add-ons
    const void* function = nullptr;               ///< the function of the add-on that the host calls; null if unknown
    std::shared_ptr<const CodeStack> stack = {};  ///< of that function; null if unknown
};

/// Returns the name of \p entry as the subject of a sentence, for example "the command".
std::string nameOf(const Entry& entry);

/// A host call, or the end of an entry.
struct Moment {
    std::shared_ptr<const Entry> entry;  ///< the entry in which it happens; never null
    std::size_t thread = 0;
    std::size_t call = 0;  ///< 0 for the end of an entry
    std::optional<HostFunction> function;
    CodeStacks* stacks = nullptr;                 ///< for withStack(); null if there is no stack to note
    std::shared_ptr<const CodeStack> stack = {};  ///< null if it was not noted; of an end: the exception's

    /// Returns this moment, which is now, with the stack of the calling thread.
    Moment withStack() const {
        Moment moment = *this;
        if (stacks != nullptr && stack == nullptr) moment.stack = stacks->capture();
        return moment;
    }
    /// Returns where the exception was thrown that the calling thread handles; null if there is no note of one.
    std::shared_ptr<const CodeStack> causeNow() const {
        return stacks == nullptr ? nullptr : stacks->ofHandledException();
    }
};

Place placeOf(const Moment& moment);

}  // namespace vexa::standin
