#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "stacks/Frame.h"
#include "system/NonCopyable.h"

namespace vexa::runner {

/// Finds the lines of the source for places in the code of programs and shared objects:
///
///     Symbols symbols;
///     const Stack frames = symbols.framesAt("./libstats.so", 0x1139);
///     std::cout << textOf(frames);
///
/// The lines come from debug information: of the object, or of the file that belongs to it in /usr/lib/debug.
///
/// Cost:    the first place of an object opens its file, and reads its debug information.
/// Errors:  what cannot be read is left out of the frame. A line that may be wrong is left out, too.
/// Threads: one thread at a time may use the object.
class Symbols : NonCopyable {
public:
    Symbols();
    ~Symbols();

    /// Returns the frames at a place in the code: those of inlined functions first, the function that they are inlined
    /// into last. There is at least one frame.
    /// \param object  the path of the object.
    /// \param offset  the address of the place as in the symbol table of the object: the address in memory minus the
    ///                place where the object was loaded. For a return address, subtract 1, because the code after a
    ///                call may belong to another line.
    /// \param buildId the build id of the object in memory, as hexadecimal digits. If the file has another one, it was
    ///                built again, and the frame has only the object and the offset. Empty if unknown.
    Stack framesAt(const std::string& object, std::uintptr_t offset, const std::string& buildId = "");

    /// Returns the function with the code at \p offset, and the line where the function starts. The parameters are
    /// those of framesAt().
    Frame functionAt(const std::string& object, std::uintptr_t offset, const std::string& buildId = "");

private:
    class Object;

    const Object* find(const std::string& object, const std::string& buildId);

    std::map<std::string, std::unique_ptr<Object>> m_objects;  // by path
};

}  // namespace vexa::runner
