#pragma once

#include <filesystem>
#include <set>

#include "system/Descriptor.h"
#include "system/NonCopyable.h"

namespace vexa::runner {

/// Makes a descriptor readable when a file in one of some folders is written and closed, renamed, created, removed, or
/// gets other attributes. It does not say which one: compare the files themselves.
///
///     FolderWatch watch;
///     watch.setFolders({"tests/macros"});
///     poll(watch.descriptor());
///     watch.forget();
class FolderWatch : NonCopyable {
public:
    /// \throws std::system_error if the system cannot watch folders. The message says why.
    FolderWatch();

    /// From now on watches \p folders, and no others. Of a folder that does not exist, watches the nearest one above
    /// it: call this function again after each change.
    /// \throws std::system_error if a folder cannot be watched. The message names the folder.
    void setFolders(const std::set<std::filesystem::path>& folders);

    int descriptor() const { return m_descriptor.get(); }
    /// Makes the descriptor unreadable until the next change.
    void forget() const;

private:
    int watch(std::filesystem::path folder) const;

    Descriptor m_descriptor;
    std::set<int> m_watched;  // the numbers that the system has given to the folders
};

}  // namespace vexa::runner
