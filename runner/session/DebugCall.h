#pragma once

#include <set>
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

/// Writes the line with which the text of a finding ends: the command that shows it in a debugger. Give it all findings
/// of a run, in their order.
class DebugLines {
public:
    /// \param options those of debugOptionsOf()
    DebugLines(std::string macroFile, std::vector<std::string> options)
        : m_macroFile(std::move(macroFile)), m_options(std::move(options)) {}

    /// \return the line with its line feed; empty if the run cannot be repeated.
    std::string of(const standin::Finding& finding);

private:
    StopPlace placeOf(const standin::Finding& finding);

    std::string m_macroFile;
    std::vector<std::string> m_options;
    std::set<std::string> m_rules;  // of the findings so far
};

}  // namespace vexa::runner
