#pragma once

#include <string>

#include "vexastandin/Observer.h"

namespace vexa::runner {

/// Returns the line with which the text of a trace starts an entry, without the macro line.
std::string beginningOf(const standin::EntryEvent& entry);

/// Returns the line with which the text of a trace ends an entry. It starts with kEntryEnd.
std::string endOf(const standin::EntryEvent& entry);

/// Returns the line of a call that has returned.
std::string lineOf(const standin::CallEvent& call);

/// Returns the line of a finding. It starts with kFindingMark.
std::string lineOf(const standin::Finding& finding);

inline constexpr char kEntryEnd[] = "=> ";
inline constexpr char kFindingMark[] = "! ";
inline constexpr char kFirstPlace[] = " (first: ";  ///< starts the place at the end of the line of a finding
inline constexpr char kRunEnd[] = "=> exit status ";

/// The first line of the text of a trace.
inline constexpr char kTextTraceHead[] =
    "# thread, then commands, and their calls of the host with arguments and results";

}  // namespace vexa::runner
