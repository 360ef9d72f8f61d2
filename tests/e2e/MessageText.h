#pragma once

#include <string>

namespace vexa::e2e {

/// Returns \p text without the lines about the stacks of a crash or a hang, which follow some messages.
std::string withoutStack(const std::string& text);

/// Returns \p text without the lines that name a command of `debug`.
std::string withoutDebugLines(const std::string& text);

/// Returns \p text without what it says about the source of add-ons, which SourceLinesTest.cpp tests.
std::string withoutSources(const std::string& text);

}  // namespace vexa::e2e
