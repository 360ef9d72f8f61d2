#pragma once

#include <optional>
#include <string>

namespace vexa::runner {

enum class Debugger_e { Gdb, Lldb };

/// A debugger of this machine.
struct FoundDebugger {
    Debugger_e kind = Debugger_e::Gdb;
    std::string program;  ///< its name or path
    std::string modules;  ///< the folder where its Python must look for modules; empty if the debugger knows it
    std::string problem;  ///< why no debugger can be used; empty if this one can
};

/// Finds the debugger to use: gdb, and lldb where gdb is not installed.
/// \param wanted the name or the path of the debugger that the user wants; one with "lldb" in its name is lldb
FoundDebugger findDebugger(const std::optional<std::string>& wanted);

}  // namespace vexa::runner
