#pragma once

#include <optional>
#include <string>

#include "vexastandin/Finding.h"

namespace vexa::standin {

/// A command that an add-on recorded.
struct RecordedCommand {
    std::string addOnId;  ///< the add-on
    std::string command;  ///< the command's text, without the add-on
    Place recordedAt;     ///< the call that recorded it
};

/// A command that an add-on added to the data-set journal.
struct JournalEntry {
    std::string addOnId;                     ///< the add-on
    std::string command;                     ///< the command's text, without the add-on
    std::optional<std::string> journalData;  ///< the add-on's own data, if it passed any
};

}  // namespace vexa::standin
