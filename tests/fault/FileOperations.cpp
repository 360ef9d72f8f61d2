// The operations on files.
#include <cerrno>
#include <cstdlib>

#include "AllocationFaults.h"
#include "SparingHost.h"
#include "support/TemporaryFolder.h"
#include "vexautilutil/AsciiFile.h"
#include "vexautilutil/FileSystem.h"
#include "vexautilutil/InvalidInstructionsException.h"

namespace vexa::tests {
namespace {

using namespace vexautilutil;

const std::string kLong = "a text of more than fifteen characters";
const std::string kThreeLines = kLong + " 1\n" + kLong + " 2\n" + kLong + " 3\n";

struct ReadFile {
    ReadFile() { file.open(folder.write("a name of more than fifteen characters.txt", kThreeLines)); }

    const TemporaryFolder folder;
    AsciiFile file;
};

std::string stateOf(const AsciiFile& file) {
    return (file.isOpen() ? "open, " : "closed, ") + std::to_string(file.numLinesInFile()) + " lines";
}

void opens(Attempt& a) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a name of more than fifteen characters.txt", kThreeLines);
    AsciiFile file;
    bool opened = false;
    a.changes(
        [&] {
            errno = 0;
            opened = file.open(path);
        },
        [&] {
            return (opened ? "true, " : errno == ENOMEM ? "ENOMEM, " : "false, ") + stateOf(file);
        });
}

// The object holds a file, and must keep it if there is no memory for the text of the next one.
void opensAnother(Attempt& a) {
    ReadFile read;
    const std::string path = read.folder.write("another name of more than fifteen characters.txt", "1\n2\n");
    bool opened = false;
    a.changes(
        [&] {
            errno = 0;
            opened = read.file.open(path);
        },
        [&] {
            return (opened ? "true, " : errno == ENOMEM ? "ENOMEM, " : "false, ") + stateOf(read.file);
        });
}

template <class Read>
void reads(Attempt& a, const Read& read) {
    ReadFile from;
    a.makes([&] { return read(from.file); });
}

// The outcome is the number of dialogs and their text before the file's path.
template <class Report>
void reports(Attempt& a, const Report& report) {
    const SparingHost host;
    const ReadFile read;
    a.changes([&] { report(read.file); },
              [&] {
                  std::string shown;
                  for (const std::string& dialog : host.dialogs()) shown += dialog.substr(0, dialog.find('/')) + '|';
                  return shown;
              });
}

// Runs an operation that returns a path. Its memory is freed as soon as the outcome is known.
template <class Make>
void makesPath(Attempt& a, const Make& make) {
    a.makes(make, [](const boost::filesystem::path& path) { return path.string(); });
}

void probes(Attempt& a) {
    const TemporaryFolder folder;
    const boost::filesystem::path path = folder.path();
    bool isWritable = false;
    a.changes(
        [&] { isWritable = filesystem::isFileOrDirWritable(path); },
        [&] { return (isWritable ? "writable, " : "not writable, ") + std::to_string(folder.count()) + " left"; });
}

void findsHome(Attempt& a) {
    const char* const set = std::getenv("HOME");
    const std::string before = set == nullptr ? "" : set;
    setenv("HOME", ("/home/" + kLong).c_str(), 1);
    a.makes([] { return filesystem::homeDirectory(); });
    unsetenv("HOME");
    if (set != nullptr) setenv("HOME", before.c_str(), 1);
}

}  // namespace

std::vector<Operation> fileOperations() {
    const boost::filesystem::path relative = kLong;
    const boost::filesystem::path base = "/base";
    return {
        {"AsciiFile", [](Attempt& a) { a.makes([] { return AsciiFile(); }, stateOf); }},
        {"AsciiFile::open", opens, {"ENOMEM, closed, 0 lines", "ENOMEM, closed, 1 lines", kUnharmed}},
        {"AsciiFile::open, when a file is held",
         opensAnother,
         {"ENOMEM, open, 3 lines", "ENOMEM, closed, 1 lines", kUnharmed}},
        {"AsciiFile::readLine", [](Attempt& a) { reads(a, [](AsciiFile& file) { return file.readLine(); }); }},
        {"AsciiFile::readLineAtOffset",
         [](Attempt& a) { reads(a, [](AsciiFile& file) { return file.readLineAtOffset(2); }); }},
        {"AsciiFile::error",
         [](Attempt& a) { reports(a, [](const AsciiFile& file) { file.error(kLong); }); },
         {"bad_alloc", ""}},
        {"AsciiFile::error, on a line",
         [](Attempt& a) { reports(a, [](const AsciiFile& file) { file.error(kLong, 7); }); },
         {"bad_alloc", ""}},
        {"AsciiFile::errorWithFormattedString",
         [](Attempt& a) { reports(a, [](const AsciiFile& file) { file.errorWithFormattedString("<%s>", kLong); }); },
         {"bad_alloc", ""}},
        {"AsciiFile::errorWithFormattedInteger",
         [](Attempt& a) {
             reports(a, [](const AsciiFile& file) { file.errorWithFormattedInteger("A value of %ld", 7); });
         },
         {"bad_alloc", ""}},
        {"InvalidInstructionsException",
         [](Attempt& a) {
             const std::string context = kLong;
             a.makes([&] { return InvalidInstructionsException(context, kLong); },
                     [](const ExceptionBase& e) { return e.message(); });
         }},
        {"isFileOrDirWritable", probes, {"not writable, 0 left"}},
        {"makeAbsolute",
         [=](Attempt& a) { makesPath(a, [=] { return filesystem::makeAbsolute(relative, base); }); },
         {"bad_alloc", kEndsTheProgram}},
        {"homeDirectory", findsHome},
    };
}

}  // namespace vexa::tests
