#pragma once

#include <string>

namespace CLI {
class App;
}  // namespace CLI

namespace vexa::runner {

/// The script by which bash completes the command line of \p app: commands, options, rules, tests and files.
std::string bashCompletion(const CLI::App& app);

}  // namespace vexa::runner
