#pragma once

#include <string>

namespace CLI {
class App;
}  // namespace CLI

namespace vexa::runner {

/// The manual page of \p app, with all its commands, for man.
std::string manPage(const CLI::App& app);

}  // namespace vexa::runner
