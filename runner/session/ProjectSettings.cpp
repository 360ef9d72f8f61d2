#include "session/ProjectSettings.h"

#include "formats/ProjectFile.h"
#include "options/UsageError.h"
#include "terminal/Console.h"

namespace vexa::runner {

bool addProjectFile(ContractOptions& options) {
    const std::string path = options.ignoresProjectFile ? "" : findProjectFile();
    if (path.empty()) return true;
    try {
        const ContractOptions project = readProjectFile(path);
        options.projectFile = path;
        if (!options.strict) options.strict = project.strict;
        if (!options.warningsAsErrors) options.warningsAsErrors = project.warningsAsErrors;
        if (!options.timeout) options.timeout = project.timeout;
        if (!options.host) options.host = project.host;
        options.suppressed.insert(options.suppressed.end(), project.suppressed.begin(), project.suppressed.end());
    } catch (const UsageError& error) {
        tell(error.what());
        return false;
    }
    return true;
}

}  // namespace vexa::runner
