// Tests that these public operations allocate no memory.
#include <gtest/gtest.h>

#include <boost/filesystem/path.hpp>

#include "AllocationFaults.h"
#include "SparingHost.h"
#include "library/macro/Tokens.h"
#include "support/TemporaryFolder.h"
#include "vexa/InvalidArgumentException.h"
#include "vexa/Scanner.h"
#include "vexa/toolbox/Set.h"
#include "vexa/ui/TaskProgress.h"
#include "vexautilutil/AsciiFile.h"
#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/FileSystem.h"
#include "vexautilutil/HostGuards.h"
#include "vexautilutil/MacroOptionPerformer.h"
#include "vexautilutil/Mutex.h"
#include "vexautilutil/SetMacroOption.h"
#include "vexautilutil/StringMacroOption.h"
#include "vexautilutil/TaskProgressBar.h"
#include "vexautilutil/UInt64MacroOption.h"

namespace vexa::tests {
namespace {

using namespace vexautilutil;
using toolbox::Set;

const std::string kLong = "a text of more than fifteen characters";

// Runs an operation while every allocation fails.
template <class Run>
void expectNoAllocation(const char* name, const Run& run) {
    bool hasFailed = false;
    {
        const FailingAllocator allocator(0, Failing::EverAfter);
        try {
            run();
        } catch (const std::exception&) {
            hasFailed = true;
        }
        hasFailed = hasFailed || FailingAllocator::hasFailed();
    }
    EXPECT_FALSE(hasFailed) << name;
}

Set someSet() {
    Set set;
    set.assign("[1-3,5,7-9]");
    return set;
}

TEST(AllocationFree, AreTheQuestionsToASet) {
    Set set = someSet();
    const Set other = someSet();
    int64_t sum = 0;
    expectNoAllocation("Set", [] { Set none; });
    expectNoAllocation("isEmpty", [&] { sum += set.isEmpty() ? 1 : 0; });
    expectNoAllocation("size", [&] { sum += static_cast<int64_t>(set.size()); });
    expectNoAllocation("contains", [&] { sum += set.contains(5) ? 1 : 0; });
    expectNoAllocation("iterators", [&] {
        for (const int64_t member : set) sum += member;
    });
    expectNoAllocation("ranges", [&] { sum += set.ranges()[0].first; });
    expectNoAllocation("==", [&] { sum += set == other ? 1 : 0; });
    EXPECT_EQ(sum, 7 + 1 + (1 + 2 + 3 + 5 + 7 + 8 + 9) + 1 + 1);
}

TEST(AllocationFree, AreMovesOfASetAndWhatMakesItSmaller) {
    Set set = someSet();
    expectNoAllocation("moves", [&] {
        Set moved(std::move(set));
        set = std::move(moved);
    });
    expectNoAllocation("insert within", [&] { set.insert(1, 9); });
    expectNoAllocation("erase at an end", [&] { set.erase(8, 9); });
    EXPECT_EQ(set.toString(), "[1-7]");
    expectNoAllocation("clear", [&] { set.clear(); });
    EXPECT_TRUE(set.isEmpty());
}

TEST(AllocationFree, AreCharactersAndNumbersOfAScanner) {
    Scanner scanner;
    scanner.reset("x  12 1.5 a-token-of-more-than-fifteen-characters");
    int64_t integer = 0;
    double number = 0;
    bool found = true;
    expectNoAllocation("hasNextChar", [&] { found = scanner.hasNextChar() && scanner.hasNextChar('x'); });
    expectNoAllocation("nextChar", [&] { found = found && scanner.nextChar() == 'x'; });
    expectNoAllocation("skipWhitespace", [&] { scanner.skipWhitespace(); });
    expectNoAllocation("nextInt64Token", [&] { integer = scanner.hasNextInt64Token() ? scanner.nextInt64Token() : 0; });
    expectNoAllocation("nextDoubleToken",
                       [&] { number = scanner.hasNextDoubleToken() ? scanner.nextDoubleToken() : 0; });
    expectNoAllocation("hasNextToken", [&] { found = found && scanner.hasNextToken(); });
    EXPECT_TRUE(found);
    EXPECT_EQ(integer, 12);
    EXPECT_EQ(number, 1.5);
}

TEST(AllocationFree, IsWhatAnExceptionTells) {
    const InvalidArgumentException exception(kLong, true);
    FILE* const stream = std::tmpfile();
    ASSERT_NE(stream, nullptr);
    const char* what = nullptr;
    bool hasCause = true;
    expectNoAllocation("what", [&] { what = exception.what(); });
    expectNoAllocation("message", [&] { what = exception.message().c_str(); });
    expectNoAllocation("cause", [&] { hasCause = exception.cause() != nullptr; });
    expectNoAllocation("printStackTrace", [&] { exception.printStackTrace(stream); });
    EXPECT_GT(std::ftell(stream), static_cast<long>(kLong.size()));
    std::fclose(stream);
    EXPECT_EQ(what, kLong);
    EXPECT_FALSE(hasCause);
}

TEST(AllocationFree, AreTheQuestionsToOptions) {
    const bool truth = true;
    const Set set = someSet();
    BooleanMacroOption boolean("A", true, &truth);
    UInt64MacroOption integer("A", 7, nullptr);
    StringMacroOption string("A", kLong, &kLong);
    SetMacroOption members("A", &set, true, &set);
    MacroOptionPerformerAbstract performer(true);
    bool areDefault = false;
    bool areRight = false;
    expectNoAllocation("isDefaultValue", [&] {
        areDefault = boolean.isDefaultValue() && string.isDefaultValue() && !integer.isDefaultValue() &&
                     !members.isDefaultValue();
    });
    expectNoAllocation("value", [&] { areRight = boolean.value() && integer.value() == 7 && *members.value() == set; });
    expectNoAllocation("perform", [&] {
        for (MacroOptionInterface* option :
             std::initializer_list<MacroOptionInterface*>{&boolean, &integer, &string, &members}) {
            option->perform(performer);
        }
    });
    EXPECT_TRUE(areDefault);
    EXPECT_TRUE(areRight);
}

TEST(AllocationFree, AreAProgressWithoutATextAndTheHostsMutex) {
    const SparingHost host;
    const auto progress = createTaskProgressBar(10);
    Mutex mutex;
    bool isInterrupted = true;
    expectNoAllocation("start", [&] { progress->start(""); });
    expectNoAllocation("advance", [&] { progress->advance(5); });
    expectNoAllocation("isInterrupted", [&] { isInterrupted = progress->isInterrupted(); });
    expectNoAllocation("finish", [&] { progress->finish(); });
    expectNoAllocation("lock", [&] { mutex.lock(); });
    expectNoAllocation("unlock", [&] { mutex.unlock(); });
    EXPECT_FALSE(isInterrupted);
    EXPECT_EQ(host.statusLine().percent, 100);
}

TEST(AllocationFree, AreTheGuards) {
    const SparingHost host;
    expectNoAllocation("AuxDataSuspendBroadcast", [] { const AuxDataSuspendBroadcast guard; });
    expectNoAllocation("DataSetSuspendMarking", [] { const DataSetSuspendMarking guard; });
    expectNoAllocation("SolutionTimeNotificationDeferrer", [] { const SolutionTimeNotificationDeferrer guard; });
}

TEST(AllocationFree, AreTheLinesOfAFile) {
    const TemporaryFolder folder;
    AsciiFile file;
    ASSERT_TRUE(file.open(folder.write("in.txt", "\n# a comment\n")));
    bool areRight = false;
    expectNoAllocation("lines", [&] {
        file.advanceToNextLine();
        file.rewind();
        areRight = file.isEmptyLine(0) && file.isCommentLine(1, '#') && *file.readRawLine() == '\0' && !file.isEOF() &&
                   *file.readRawLineAtOffset(1) == '#' && file.currentLineNumber() == 1 && file.numLinesInFile() == 2 &&
                   !file.fileName().empty() && file.isOpen();
        file.close();
    });
    EXPECT_TRUE(areRight);
}

TEST(AllocationFree, AreTheQuestionsToTheFileSystem) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a name of more than fifteen characters", "12345");
    const std::string other = path + " too";
    const std::string mode = "rb";
    const boost::filesystem::path file = path;
    const boost::filesystem::path directory = folder.path();
    unsigned long size = 0;
    bool areRight = false;
    expectNoAllocation("questions", [&] {
        areRight = filesystem::fileExists(file) && filesystem::dirExists(directory) &&
                   filesystem::fileStatus(file, true).type() == boost::filesystem::regular_file &&
                   filesystem::isFileOrDirWritable(file) && filesystem::fileSize(path, size) && size == 5;
    });
    EXPECT_TRUE(areRight);
    expectNoAllocation("changes", [&] {
        FILE* stream = filesystem::fileOpen(path, mode);
        stream = filesystem::fileReopen(path, mode, stream);
        areRight = stream != nullptr && std::fclose(stream) == 0 && filesystem::fileRename(path, other) == 0 &&
                   filesystem::fileRemove(other) == 0;
    });
    EXPECT_TRUE(areRight);
    EXPECT_EQ(folder.count(), 0);
}

}  // namespace
}  // namespace vexa::tests
