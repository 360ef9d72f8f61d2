#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "session/Session.h"
#include "session/StopPlace.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {

/// The options with which `debug` repeats a run: those on which the calls of the add-ons depend. Pass the options as
/// the user gave them, without the project file, which `debug` reads itself.
/// \param records    whether the host says that it records macro commands
/// \param keepsGoing whether the run continues after a failed command
/// \return empty if the run cannot be repeated, because the style file is the standard input.
std::vector<std::string> debugOptionsOf(const SessionOptions& options, bool records, bool keepsGoing);

/// Returns the options that make `debug` stop at \p place: `--call 7`.
std::vector<std::string> optionsOf(const StopPlace& place);

/// Returns the words after `vexa-standin debug`: the macro file and then \p options.
std::vector<std::string> debugWords(const std::string& macroFile, const std::vector<std::string>& options);

/// Returns the command line of `debug` for a shell; empty if \p options is empty or the macro is the standard input.
std::string debugCall(const std::string& macroFile, const std::vector<std::string>& options, const StopPlace& place);

/// Returns the line with which a message about a problem ends: \p call, a command that debugCall() returned, with a
/// line feed. Empty if \p call is empty.
std::string debugLine(const std::string& call);

/// The commands that show the problems of a run in a debugger. They are empty if the run cannot be repeated.
class DebugCalls {
public:
    /// \param options those of debugOptionsOf()
    DebugCalls(std::string macroFile, std::vector<std::string> options)
        : m_macroFile(std::move(macroFile)), m_options(std::move(options)) {}

    /// Returns the command for a finding. Ask for all findings of a run in their order; again as often as you like.
    std::string of(const standin::Finding& finding);
    /// Returns the command for another problem.
    std::string at(const StopPlace& place) const { return debugCall(m_macroFile, m_options, place); }

private:
    StopPlace placeOf(const standin::Finding& finding);

    std::string m_macroFile;
    std::vector<std::string> m_options;
    std::map<std::string, std::size_t> m_firstCalls;  // the call of the first finding about each rule
};

}  // namespace vexa::runner
