#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vexa::runner {

/// The files of a command of this program: those that it reads, and those that it writes. No output may be an input,
/// or another output, whatever it is called: files are told apart by what they are, and one that is not there yet by
/// the place that it will have.
///
///     RunFiles files;
///     files.read(options.macroFile);
///     files.write(options.record);   // throws when it is the macro file
///
/// To be asked about all files before the first output is opened, for opening it may empty it. Devices are no files
/// here: several outputs may go to /dev/null. Where the standard output or the standard error output is redirected to
/// a file, that is an output, too.
class RunFiles {
public:
    /// Notes an input. It need not be there.
    void read(const std::string& path);
    void read(const std::optional<std::string>& path);
    void read(const std::vector<std::string>& paths);
    /// Notes an output. `-` is the standard output.
    /// \throws OutputError when it is a file that was noted before, and when it cannot be written: see outputTarget().
    void write(const std::string& path);
    void write(const std::optional<std::string>& path);

private:
    struct File {
        std::string name;   // as the user wrote it
        std::string place;  // where it is, or will be, whatever the current folder becomes
    };

    void refuseIfTaken(const File& output) const;

    std::vector<File> m_files;
};

}  // namespace vexa::runner
