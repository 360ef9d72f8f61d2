/// \file
/// File operations that report a failure by their result. They do not throw when an operation fails.
///
/// Paths are bytes in the encoding of the file system. The functions do not convert them.
/// Errors:  the result reports a failure. Where a function says so, `errno` has the reason.
/// Threads: any thread may call these functions. Do not call homeDirectory() while another thread changes the
///          environment.
#pragma once

#include <boost/filesystem/operations.hpp>
#include <boost/filesystem/path.hpp>
#include <cstdio>
#include <string>

#include "vexautilutil/Export.h"

namespace vexa::filesystem {

/// Opens a file, as `std::fopen` does.
/// \param mode for example "rb".
/// \return the stream, which the caller must close; null on failure, with the reason in `errno`.
VEXAUTILUTIL_API FILE* fileOpen(const std::string& path, const std::string& mode);

/// Closes the file of \p stream and opens another one in its place, as `std::freopen` does.
/// \return \p stream; null on failure, with the reason in `errno`. On failure \p stream is closed.
VEXAUTILUTIL_API FILE* fileReopen(const std::string& path, const std::string& mode, FILE* stream);

/// Renames a file or directory, as `std::rename` does. It replaces an existing file of the new name.
/// \return 0; -1 on failure, with the reason in `errno`.
VEXAUTILUTIL_API int fileRename(const std::string& from, const std::string& to);

/// Removes a file or an empty directory, as `std::remove` does.
/// \return 0; -1 on failure, with the reason in `errno`.
VEXAUTILUTIL_API int fileRemove(const std::string& path);

/// Gets the size of a file. Follows links.
/// \param size receives the size in bytes; unchanged on failure.
/// \return false on failure, with the reason in `errno`.
VEXAUTILUTIL_API bool fileSize(const char* path, unsigned long& size);
/// Does the same for a `std::string`.
VEXAUTILUTIL_API bool fileSize(const std::string& path, unsigned long& size);

/// Replaces every backslash in \p path by a slash.
VEXAUTILUTIL_API void convertPathDelimitersForOS(std::string& path);

/// Returns the status of the file or directory at \p path.
/// \param followSymlinks true to get the status of a link's target, false to get that of the link.
/// \return the status. On failure its type is `boost::filesystem::file_not_found` or
///         `boost::filesystem::status_error`.
VEXAUTILUTIL_API boost::filesystem::file_status fileStatus(const boost::filesystem::path& path,
                                                           bool followSymlinks) noexcept;

/// Returns true if \p path exists and is not a directory. Follows links. For directories call dirExists().
VEXAUTILUTIL_API bool fileExists(const boost::filesystem::path& path) noexcept;

/// Returns true if \p path is a directory. Follows links.
VEXAUTILUTIL_API bool dirExists(const boost::filesystem::path& path) noexcept;

/// Joins \p base and \p path. If \p path is absolute, returns \p path alone.
///
///     data/x.txt, base /base  ->  /base/data/x.txt
///     /tmp/x,     base /base  ->  /tmp/x
///     x,          base rel    ->  rel/x
///     ../x,       base /base  ->  /base/../x      The path is not normalised.
///
/// \warning If memory runs out, the program ends.
VEXAUTILUTIL_API boost::filesystem::path makeAbsolute(const boost::filesystem::path& path,
                                                      const boost::filesystem::path& base) noexcept;

/// Returns the user's home directory. It is the first of these whose environment variable is set and not empty:
/// HOME, "/home/" + USERNAME, "/home/" + USER.
/// \return the directory, which need not exist; empty if none of the three variables is set.
VEXAUTILUTIL_API std::string homeDirectory();

/// Returns true if the program can write the file at \p path, or create a file in the directory at \p path. It tests
/// this by opening the file, or a new file in the directory, for appending. If there is no memory for the name of that
/// new file, it returns false.
///
/// A missing file counts as writable if the program can create it. An existing file keeps its contents; its times may
/// change. The function removes every file that it created.
/// \warning Do not call it for a file that another program may create or remove at the same moment. If another program
///          creates the file during the call, this function may remove it. If another program removes the file during
///          the call, this function may leave an empty file. The files in a directory are safe, because the new file
///          has a random name.
/// \warning If \p path is a link without a target, the function removes the link and leaves an empty file as its
///          target.
/// \warning In the path of a directory, each `%` is replaced by a random digit. So the function returns false for a
///          directory with a `%` in its path.
VEXAUTILUTIL_API bool isFileOrDirWritable(const boost::filesystem::path& path) noexcept;

}  // namespace vexa::filesystem
