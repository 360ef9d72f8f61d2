#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "options/ExitStatus.h"
#include "system/files/InputLines.h"

namespace vexa::runner {

/// The state of a run that was cut off: what it has done, and what is left.
struct CutOffRun {
    std::vector<std::string> left;                             ///< the macro files without results
    std::size_t done = 0;                                      ///< how many macro files have results
    std::vector<std::pair<std::string, ExitStatus_e>> failed;  ///< those of them that failed
};

/// Reads the results of a run of \p macroFiles that was cut off, and removes the results of macro files that have no
/// end line or that were stopped by Ctrl-C: these files are left. A missing file has no results. The file is replaced
/// as a whole, so a killed program loses nothing.
/// \throws ResultsError if it is not a results file, or if it has results of other macro files.
/// \throws OutputError
CutOffRun takeUp(const std::string& resultsFile, const std::vector<std::string>& macroFiles);

/// Reads the results in the same way, and passes the lines that stay to \p keep.
/// \param name the results file in messages
/// \throws ResultsError
CutOffRun takeUp(InputLines& results, const std::string& name, const std::vector<std::string>& macroFiles,
                 const std::function<void(const std::string& lines)>& keep);

}  // namespace vexa::runner
