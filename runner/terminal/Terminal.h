#pragma once

#include <cstddef>
#include <string_view>

namespace vexa::runner {

/// The value of the environment variable \p name; empty if it is not set.
std::string_view environment(const char* name);

/// Returns true if \p descriptor is a terminal that can redraw a line.
bool isTerminal(int descriptor);

/// The current width of the window of the terminal \p descriptor, in columns.
std::size_t columnsOf(int descriptor);

/// The width for text on \p descriptor: the environment variable COLUMNS, or the width of its window; 80 if it is no
/// terminal.
std::size_t textColumnsOf(int descriptor);

/// Returns true if messages should have colours: the choice of chooseColour(). By default it returns true if the
/// standard error output is a terminal and the environment variable NO_COLOR is empty.
bool wantsColour();

/// Sets the result of wantsColour(). Call it while the process has one thread.
void chooseColour(bool wanted);

/// Moves the cursor of a terminal to the start of its line and clears everything after it.
inline constexpr char kClearLine[] = "\r\033[J";

}  // namespace vexa::runner
