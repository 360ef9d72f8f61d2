#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace vexa::tests {

/// Runs \p work in a forked child, which no fault of it can outlive.
/// \return what \p work returns; or what ended the child: "ended by signal N", or "did not return" after \p patience.
std::string inChild(const std::function<std::string()>& work,
                    std::chrono::milliseconds patience = std::chrono::seconds(20));

/// The same, as a user without rights. The files that \p work is to reach must be open to everybody.
/// \return as above; "kept its rights" when they cannot be dropped.
std::string inChildWithoutRights(const std::function<std::string()>& work);

/// The descriptors that this process has open.
long openDescriptors();

}  // namespace vexa::tests
