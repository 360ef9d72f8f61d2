#pragma once

#include <cstddef>

namespace vexa::runner {

/// Whether \p descriptor is a terminal on which a line can be drawn anew.
bool isTerminal(int descriptor);

/// How many columns the window of the terminal \p descriptor has now.
std::size_t columnsOf(int descriptor);

/// How many columns there are for text on \p descriptor: those of the environment variable COLUMNS or of its window; 80
/// when it is no terminal.
std::size_t textColumnsOf(int descriptor);

/// Whether messages are to be in colour: as chooseColour() said; without it, when the standard error output is a
/// terminal and the environment variable NO_COLOR is empty.
bool wantsColour();

/// Decides about wantsColour(). Call it while there is one thread.
void chooseColour(bool wanted);

/// What brings the cursor of a terminal to the start of its line, and clears what is from there on.
inline constexpr char kClearLine[] = "\r\033[J";

}  // namespace vexa::runner
