#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "contract/HostFunctionTable.h"
#include "vexastandin/Finding.h"
#include "vexastandin/Observer.h"

namespace vexa::standin {

/// A time that the host spends in an add-on; also the time that it spends in none.
struct Entry {
    Entry_e kind = Entry_e::Command;
    std::string addOnId;  ///< the add-on; its file until its id is known; empty for no add-on
    std::string command;  ///< the command's text; empty when it is none
    std::string macroLine;
    std::size_t thread = 0;  ///< the thread that entered, by number; 0 for no add-on
};

/// What \p entry is called where it is the subject: "the command", "the loading".
std::string nameOf(const Entry& entry);

/// A host call, or the end of an entry.
struct Moment {
    std::shared_ptr<const Entry> entry;  ///< within which it is; never null
    std::size_t thread = 0;
    std::size_t call = 0;  ///< 0 for the end of an entry
    std::optional<HostFunction> function;
};

Place placeOf(const Moment& moment);

}  // namespace vexa::standin
