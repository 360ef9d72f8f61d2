// Runs eight threads at the same time: each with its own objects, or all with the same mutex. Run it with the thread
// sanitizer, which detects a race or an inverted lock order even if this run has no failure.

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "library/macro/Tokens.h"
#include "library/processor/ScriptedProcessor.h"
#include "load/Load.h"
#include "support/TemporaryFolder.h"
#include "vexa/Scanner.h"
#include "vexa/toolbox/Set.h"
#include "vexa/ui/TaskProgress.h"
#include "vexastandin/Host.h"
#include "vexautilutil/AsciiFile.h"
#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/Mutex.h"
#include "vexautilutil/SetMacroOption.h"
#include "vexautilutil/StringMacroOption.h"
#include "vexautilutil/UInt64MacroOption.h"

namespace vexa::vexautilutil {
namespace {

constexpr int kThreads = 8;

// Starts eight threads together. Each one creates its own `operation` by `make`, and calls it with 0, 1 and so on.
// Returns the number of calls that did not return true.
template <class Make>
long wrongAnswers(const Make& make) {
    const long operations = load::amount(2000, 100000);
    std::atomic<bool> go{false};
    std::atomic<long> wrong{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            while (!go) std::this_thread::yield();
            auto operation = make(thread);
            for (long i = 0; i < operations; ++i) {
                if (!operation(i)) ++wrong;
            }
        });
    }
    go = true;
    for (std::thread& thread : threads) thread.join();
    return wrong;
}

// A host that keeps no calls, because there would be millions.
struct QuietHost : standin::Host {
    QuietHost() { setKeepsCalls(false); }
};

// Parses a command and renders it again.
template <class Option, class... More>
std::string again(const std::string& text, More... more) {
    return parsedAs<Option>(text, more...).toString();
}

TEST(EightThreads, ParseAndRenderOptionsOfEveryType) {
    const long wrong = wrongAnswers([](int thread) {
        return [thread](long i) {
            const std::string number = "COUNT=" + std::to_string(1000 * i + thread);
            const std::string flag = i % 2 == 0 ? "ENABLED=TRUE" : "ENABLED=FALSE";
            const std::string text = "TITLE=\"row " + std::to_string(i) + " of thread " + std::to_string(thread) + '"';
            const std::string set = "ZONES=[1-3," + std::to_string(10 + i) + ']';
            return again<UInt64MacroOption>(number, nullptr) == number &&
                   again<BooleanMacroOption>(flag, nullptr) == flag &&
                   again<StringMacroOption>(text, nullptr) == text && again<SetMacroOption>(set, false, nullptr) == set;
        };
    });
    EXPECT_EQ(wrong, 0);
}

TEST(EightThreads, RefuseOptionsOfEveryType) {
    const long wrong = wrongAnswers([](int) {
        return [](long i) {
            const std::string bad = "bad" + std::to_string(i);
            return refusedAs<UInt64MacroOption>("COUNT=" + bad, nullptr, nullptr) == "Invalid integer value " + bad &&
                   refusedAs<BooleanMacroOption>("ENABLED=" + bad, nullptr, nullptr) ==
                       "Expected a Boolean operator, but found " + bad &&
                   refusedAs<StringMacroOption>("TITLE=" + bad, nullptr, nullptr) ==
                       "Expected single or double quoted string" &&
                   refusedAs<SetMacroOption>("ZONES=" + bad, nullptr, false, nullptr) ==
                       "Expected opening set character, [";
        };
    });
    EXPECT_EQ(wrong, 0);
}

TEST(EightThreads, ProcessCommandsEachWithItsOwnProcessor) {
    const QuietHost host;
    const long wrong = wrongAnswers([](int) {
        struct Read {
            std::int64_t count = 0;
            std::string title;
        };
        const auto read = std::make_shared<Read>();
        const auto processor = std::make_shared<ScriptedProcessor>([read](MacroCommandProcessorAbstract& command) {
            std::string word;
            return command.getCommand(word) && command.getNextName(word) && command.getInt64Value(read->count) &&
                   command.getNextName(word) && command.getStringValue(read->title, true);
        });
        return [read, processor](long i) {
            const std::string count = std::to_string(i);
            const std::string good = "LOAD COUNT = " + count + " TITLE = 'row " + count + '\'';
            const bool isRead =
                !outcomeOf(*processor, good.c_str()) && read->count == i && read->title == "row " + count;
            return isRead && outcomeOf(*processor, "LOAD COUNT = many") ==
                                 "Error: Invalid Int64 value for command option: COUNT\n";
        };
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_TRUE(host.violations().empty());
}

TEST(EightThreads, ReadSmallFiles) {
    const tests::TemporaryFolder folder;
    const long wrong = wrongAnswers([&folder](int thread) {
        const std::string name = std::to_string(thread);
        const std::string path = folder.write(name, "# file " + name + "\r\n\nrow " + name);
        return [name, path](long) {
            AsciiFile file;
            return file.open(path) && file.numLinesInFile() == 3 && file.isCommentLine(0, '#') && file.isEmptyLine(1) &&
                   file.readLineAtOffset(2) == "row " + name;
        };
    });
    EXPECT_EQ(wrong, 0);
}

class CountingBar : public ui::ProgressBarInterface {
public:
    void start(const std::string& message) override { text = message; }
    void finish() override { ++finished; }
    void setStatusMessage(const std::string& message) override { text = message; }
    void setPercentDone(int percent) override { last = percent; }
    bool isInterrupted() const override { return false; }

    std::string text;
    int last = 0;
    long finished = 0;
};

TEST(EightThreads, ShowProgressEachOnItsOwnBar) {
    const long wrong = wrongAnswers([](int) {
        const auto bar = std::make_shared<CountingBar>();
        return [bar](long i) {
            ui::TaskProgress progress(bar, 10);
            progress.start("row " + std::to_string(i));
            for (int step = 0; step < 10 && !progress.isInterrupted(); ++step) progress.advance();
            progress.finish();
            return bar->text == "row " + std::to_string(i) && bar->last == 100 && bar->finished == i + 1;
        };
    });
    EXPECT_EQ(wrong, 0);
}

TEST(EightThreads, ReadWriteAndChangeSets) {
    const long wrong = wrongAnswers([](int) {
        return [](long i) {
            const std::string far = std::to_string(100 + i);
            toolbox::Set set;
            set.assign("[7,1-3," + far + ",5]");
            set.insert(4);
            set.erase(2);
            const toolbox::Set copy = set;
            return copy.toString() == "[1,3-5,7," + far + ']' && copy.size() == 6 && copy.contains(100 + i);
        };
    });
    EXPECT_EQ(wrong, 0);
}

TEST(EightThreads, ScanEachWithItsOwnScanner) {
    const long wrong = wrongAnswers([](int) {
        const auto scanner = std::make_shared<Scanner>();
        return [scanner](long i) {
            scanner->reset("  word " + std::to_string(i) + " 2.5e-3 end");
            return scanner->nextToken() == "word" && scanner->hasNextInt64Token() && scanner->nextInt64Token() == i &&
                   scanner->nextDoubleToken() == 2.5e-3 && scanner->nextToken() == "end";
        };
    });
    EXPECT_EQ(wrong, 0);
}

TEST(EightThreads, TakeTurnsAtOneMutex) {
    const QuietHost host;
    Mutex mutex;
    long counter = 0;
    const long wrong = wrongAnswers([&](int) {
        return [&](long) {
            const std::lock_guard<Mutex> lock(mutex);
            const long before = counter++;
            return counter == before + 1;
        };
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(counter, kThreads * load::amount(2000, 100000));
    EXPECT_TRUE(host.violations().empty());
}

}  // namespace
}  // namespace vexa::vexautilutil
