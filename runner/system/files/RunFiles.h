#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vexa::runner {

/// The files that a command of this program reads and writes. No output may be an input or another output, even under
/// another name: existing files are compared by device and inode, missing ones by their absolute path.
///
///     RunFiles files;
///     files.read(options.macroFile);
///     files.write(options.record);   // throws if it is the macro file
///
/// Note all files before you open the first output: opening may empty it. Devices are not compared: several outputs may
/// go to /dev/null. A file to which the standard output or the standard error output is redirected is an output, too.
class RunFiles {
public:
    /// Notes an input. It need not exist.
    void read(const std::string& path);
    void read(const std::optional<std::string>& path);
    void read(const std::vector<std::string>& paths);
    /// Notes an output. `-` is the standard output.
    /// \throws OutputError if the file was noted before, or if it cannot be written: see outputTarget().
    void write(const std::string& path);
    void write(const std::optional<std::string>& path);

private:
    struct File {
        std::string name;   // as the user wrote it
        std::string place;  // its absolute path
    };

    void refuseIfTaken(const File& output) const;

    std::vector<File> m_files;
};

}  // namespace vexa::runner
