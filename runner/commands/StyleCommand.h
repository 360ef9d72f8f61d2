#pragma once

#include "options/Command.h"

namespace vexa::runner {

/// `style` prints a setting of a style file as add-ons get it from the library: its kind and its value.
Command styleCommand();

}  // namespace vexa::runner
