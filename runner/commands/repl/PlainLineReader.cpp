// For a program that is built without readline.

#include <cstdio>

#include "commands/repl/LineReader.h"
#include "terminal/Terminal.h"

namespace vexa::runner {

LineReader::LineReader() : m_isEditing(isTerminal(0) && isTerminal(1)) {}

LineReader::~LineReader() = default;

std::optional<std::string> LineReader::next(std::vector<std::string>, const Descriptions&) const {
    if (m_isEditing) std::fputs("> ", stdout);
    std::fflush(stdout);
    return plainLine();
}

}  // namespace vexa::runner
