#pragma once

namespace vexa::runner {

/// \name What a run tells the process that keeps its outputs
/// @{
inline constexpr char kRecordedNote = 'r';   ///< the lines of a recorded command
inline constexpr char kJournaledNote = 'j';  ///< the lines of a journal entry
inline constexpr char kResultNote = 'o';     ///< a line of the results
inline constexpr char kEndNote = 'e';        ///< the last line of the results
inline constexpr char kBeganNote = 'b';      ///< that commands run from now on
inline constexpr char kWriteNote = 'w';  ///< asks to write the outputs; the answer is kWritten and a summary, or else
/// @}

inline constexpr char kWritten = 'y';

}  // namespace vexa::runner
