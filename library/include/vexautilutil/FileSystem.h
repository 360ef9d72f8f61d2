/// \file
/// File operations that report failure by what they return, and never throw for it.
///
/// Paths are bytes, in whatever encoding the file system has; nothing is converted.
/// Errors:  what a function returns is all there is; where it says so, `errno` has the reason.
/// Threads: safe from any, except homeDirectory() while another thread changes the environment.
#pragma once

#include <boost/filesystem/operations.hpp>
#include <boost/filesystem/path.hpp>
#include <cstdio>
#include <string>

#include "vexautilutil/Export.h"

namespace vexa::filesystem {

/// Opens a file, as `std::fopen`.
/// \param mode for example "rb".
/// \return the stream, which the caller closes; null on failure, with the reason in `errno`.
VEXAUTILUTIL_API FILE* fileOpen(const std::string& path, const std::string& mode);

/// Lets \p stream go on with another file, as `std::freopen`.
/// \return \p stream; null on failure, with the reason in `errno`. \p stream is closed then.
VEXAUTILUTIL_API FILE* fileReopen(const std::string& path, const std::string& mode, FILE* stream);

/// Renames a file or directory, as `std::rename`: an existing file of the new name is replaced.
/// \return 0; -1 on failure, with the reason in `errno`.
VEXAUTILUTIL_API int fileRename(const std::string& from, const std::string& to);

/// Removes a file or an empty directory, as `std::remove`.
/// \return 0; -1 on failure, with the reason in `errno`.
VEXAUTILUTIL_API int fileRemove(const std::string& path);

/// The size of a file; links are followed.
/// \param size receives the size in bytes; untouched on failure.
/// \return false on failure, with the reason in `errno`.
VEXAUTILUTIL_API bool fileSize(const char* path, unsigned long& size);
/// The same, for a text.
VEXAUTILUTIL_API bool fileSize(const std::string& path, unsigned long& size);

/// Replaces every backslash of \p path by a slash, and changes nothing else.
VEXAUTILUTIL_API void convertPathDelimitersForOS(std::string& path);

/// The status of what \p path names.
/// \param followSymlinks whether a link stands for what it leads to, or for itself.
/// \return on failure the type is `boost::filesystem::file_not_found` or `boost::filesystem::status_error`.
VEXAUTILUTIL_API boost::filesystem::file_status fileStatus(const boost::filesystem::path& path,
                                                           bool followSymlinks) noexcept;

/// Whether \p path leads to something that is no directory; see dirExists() for those. Links are followed.
VEXAUTILUTIL_API bool fileExists(const boost::filesystem::path& path) noexcept;

/// Whether \p path leads to a directory. Links are followed.
VEXAUTILUTIL_API bool dirExists(const boost::filesystem::path& path) noexcept;

/// Makes \p path absolute, if \p base is.
///
///     data/x.txt against /base  ->  /base/data/x.txt
///     /tmp/x     against /base  ->  /tmp/x
///     x          against rel    ->  rel/x
///     ../x       against /base  ->  /base/../x      nothing is normalised
///
/// \warning Nothing can report that memory ran out here: the program ends then.
VEXAUTILUTIL_API boost::filesystem::path makeAbsolute(const boost::filesystem::path& path,
                                                      const boost::filesystem::path& base) noexcept;

/// The user's home directory: the environment variable HOME; without it "/home/" and the name that USERNAME, or else
/// USER, holds. An empty variable counts as unset.
/// \return empty when none of them is set. The directory need not exist.
VEXAUTILUTIL_API std::string homeDirectory();

/// Whether a file can be written, or a file be made in a directory. It is found out by opening one for appending.
/// Without memory for a directory's probe the answer is no.
///
/// An existing file keeps its contents; its times may change. What was made for the probe is removed.
/// \warning Do not ask for a path that others may create or remove at the same moment. A file that appears between the
///          look and the probe is removed, with its contents; one that vanishes is made anew, empty. A directory is
///          probed by a file of a random name, so this cannot happen to the files in it.
/// \warning A link that leads nowhere is removed by the probe, and what it led to is left behind, empty.
/// \warning In the path of a directory, each `%` stands for a random digit, so that such a directory counts as not
///          writable.
VEXAUTILUTIL_API bool isFileOrDirWritable(const boost::filesystem::path& path) noexcept;

}  // namespace vexa::filesystem
