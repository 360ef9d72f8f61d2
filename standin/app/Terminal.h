#pragma once

#include <cstddef>

namespace vexa::runner {

/// Whether \p descriptor is a terminal on which a line can be drawn anew.
bool isTerminal(int descriptor);

/// How many columns the window of the terminal \p descriptor has now.
std::size_t columnsOf(int descriptor);

/// Whether the user wants colour, as far as the environment tells.
bool wantsColour();

/// What brings the cursor of a terminal to the start of its line, and clears what is from there on.
inline constexpr char kClearLine[] = "\r\033[J";

}  // namespace vexa::runner
