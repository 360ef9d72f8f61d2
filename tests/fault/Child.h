#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace vexa::tests {

/// Runs \p work in a child process, so that a crash or a hang ends only the child.
/// \return the result of \p work; "ended by signal N" after a crash; "did not return" after \p patience.
std::string inChild(const std::function<std::string()>& work,
                    std::chrono::milliseconds patience = std::chrono::seconds(20));

/// Does the same as a user without rights. Every user must be able to read the files that \p work needs.
/// \return the same, or "kept its rights" if the child cannot drop its rights.
std::string inChildWithoutRights(const std::function<std::string()>& work);

/// Returns the open descriptors of this process.
long openDescriptors();

}  // namespace vexa::tests
