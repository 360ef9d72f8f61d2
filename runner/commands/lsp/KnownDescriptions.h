#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "language/Descriptions.h"
#include "system/files/FileStamp.h"

namespace vexa::runner {

/// Finds the descriptions for macro files: the files of the command line, and each NAME.commands.json in the folder of
/// the macro or in a folder of the workspace. If two describe one add-on, the command line wins, then the macro's
/// folder.
///
/// Prints the problems of a description with tell(). If a description becomes wrong while the program runs, the last
/// one without a problem stays in use.
class KnownDescriptions {
public:
    /// \param files  the descriptions of the command line
    explicit KnownDescriptions(std::vector<std::string> files) : m_files(std::move(files)) {}

    /// Add and remove an open folder. forFolder() follows.
    void addWorkspace(std::string folder);
    void removeWorkspace(const std::string& folder);

    /// Returns the descriptions for macros in \p folder, an absolute path or empty. Reads them again if a file came,
    /// changed or is gone. Callers keep the result while they use it.
    std::shared_ptr<const Descriptions> forFolder(const std::string& folder);

    /// Frees the descriptions that only this object keeps.
    void freeUnused();

private:
    struct Read {
        std::string file;
        FileStamp stamp;
        std::optional<AddOnDescription> description;
    };
    struct Folder {
        std::vector<Read> reads;
        std::shared_ptr<const Descriptions> descriptions;
    };

    std::vector<std::string> filesFor(const std::string& folder) const;

    std::vector<std::string> m_files;
    std::vector<std::string> m_workspace;
    std::map<std::string, Folder> m_folders;
};

}  // namespace vexa::runner
