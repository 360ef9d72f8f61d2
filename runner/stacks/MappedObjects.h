#pragma once

#include <elfutils/libdwfl.h>
#include <sys/types.h>

namespace vexa::runner {

/// Tells \p session, which is new, what the loader has mapped in \p process: the program, its libraries and the object
/// that the system adds to each process.
///
/// A process may have mapped the file of a library once more, for example to read its symbols. libdwfl alone would take
/// both for one object, at a wrong address.
/// \return whether the objects are known.
bool reportMappedObjects(Dwfl* session, pid_t process);

}  // namespace vexa::runner
