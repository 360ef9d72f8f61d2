#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}  // namespace CLI

namespace vexa::runner {

/// After a command line was refused for words that mean nothing: which, in their order.
std::string unexpectedWords(const CLI::App& app);

/// After a command line was refused: what may be meant by those of its words that are no subcommand or option, a
/// message each. "--recrod: did you mean --record?"
std::vector<std::string> corrections(const CLI::App& app);

}  // namespace vexa::runner
