// Measures what the file functions add to the cost of stat().
#include <sys/stat.h>

#include <boost/filesystem/operations.hpp>
#include <boost/filesystem/path.hpp>
#include <string>

#include "support/Rows.h"
#include "vexautilutil/FileSystem.h"

namespace {

using boost::filesystem::path;
using vexa::bench::addCall;

const path kFile = "/proc/self/exe";
const path kFolder = "/";

void addStat(const std::string& row, const path& asked) {
    addCall(row + "/stat", [&asked] {
        struct stat status {};
        benchmark::DoNotOptimize(stat(asked.c_str(), &status));
        benchmark::DoNotOptimize(status);
    });
}

const bool isAdded = [] {
    static const path file = boost::filesystem::read_symlink(kFile);
    static const std::string fileName = file.string();
    addStat("file-exists", file);
    addCall("file-exists/ours", [] { benchmark::DoNotOptimize(vexa::filesystem::fileExists(file)); });
    addStat("dir-exists", kFolder);
    addCall("dir-exists/ours", [] { benchmark::DoNotOptimize(vexa::filesystem::dirExists(kFolder)); });
    addStat("file-size", file);
    addCall("file-size/ours", [] {
        unsigned long size = 0;
        benchmark::DoNotOptimize(vexa::filesystem::fileSize(fileName, size));
        benchmark::DoNotOptimize(size);
    });
    return true;
}();

}  // namespace
