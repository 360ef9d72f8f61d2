#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "commands/test/MacroTests.h"
#include "system/files/FileStamp.h"

namespace vexa::runner {

/// The files on which the results of macros depend: the add-ons and the settings, on which all depend, and the macros
/// and the files beside them.
class WatchedFiles {
public:
    using Stamps = std::map<std::string, FileStamp>;

    /// \param options the options of the test, completed by the project file; for the settings.
    void set(const TestOptions& options);

    /// Returns the folders in which these files are, or would be.
    std::set<std::filesystem::path> folders() const;
    /// Returns the current stamps of all files, also of those that are not there.
    Stamps stamps() const;
    /// Returns true if all macros depend on the file.
    bool isShared(const std::string& file) const { return m_shared.count(file) != 0; }
    /// Returns the current stamps of the files on which one macro depends.
    Stamps stampsFor(const std::string& macro) const;

    /// Returns the files whose stamps differ.
    static std::set<std::string> difference(const Stamps& before, const Stamps& now);

private:
    std::vector<std::string> m_paths;  // macros, and folders of macros
    std::set<std::string> m_shared;
};

}  // namespace vexa::runner
