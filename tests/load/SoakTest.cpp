// Does the same work for hours. The process must not hold more at the end than after the first tenth.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "library/macro/Tokens.h"
#include "library/processor/ScriptedProcessor.h"
#include "load/Load.h"
#include "load/Soak.h"
#include "support/TemporaryFolder.h"
#include "vexa/toolbox/Set.h"
#include "vexastandin/Host.h"
#include "vexastandin/Observer.h"
#include "vexautilutil/AsciiFile.h"
#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/SetMacroOption.h"
#include "vexautilutil/StringMacroOption.h"
#include "vexautilutil/UInt64MacroOption.h"

namespace vexa::vexautilutil {
namespace {

// Counts the host's objects that were allocated and not freed.
class LivingHandles : public standin::ObserverInterface {
public:
    void entryBegan(const standin::EntryEvent&) override {}
    void entryEnded(const standin::EntryEvent&) override {}
    void callBegan(const standin::CallEvent&) override {}
    void callEnded(const standin::CallEvent& call) override {
        if (endsWith(call.function, "Dealloc")) {
            --living;
        } else if (endsWith(call.function, "Alloc")) {
            ++living;
            ++made;
        }
    }
    void findingMade(const standin::Finding&) override {}
    void statusChanged(const standin::StatusLine&) override {}

    long living = 0;
    long made = 0;

private:
    static bool endsWith(const std::string& text, const std::string& end) {
        return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
    }
};

TEST(Soak, CommandsThroughOneProcessor) {
    LivingHandles handles;
    standin::Host host;
    host.setKeepsCalls(false);
    host.setObserver(&handles);
    ScriptedProcessor processor([](MacroCommandProcessorAbstract& command) {
        std::string word;
        std::string text;
        std::int64_t count = 0;
        toolbox::Set zones;
        return command.getCommand(word) && command.getNextName(word) && command.getInt64Value(count) &&
               command.getNextName(word) && command.getStringValue(text, true) && command.getNextName(word) &&
               command.getSetValue(zones);
    });
    load::soak("commands, one in twenty refused", load::amount(100000, 10000000), [&](long i) {
        const bool isBad = i % 20 == 0;
        const std::string command = "LOAD COUNT = " + (isBad ? "many" : std::to_string(i)) +
                                    " TITLE = 'a title of more than fifteen characters' ZONES = [1-3,5," +
                                    std::to_string(10 + i) + ']';
        return outcomeOf(processor, command.c_str()).has_value() == isBad;
    });
    EXPECT_GT(handles.made, 0) << "one for each refusal";
    EXPECT_EQ(handles.living, 0);
    EXPECT_TRUE(host.violations().empty());
}

TEST(Soak, CommandsThroughTheStandIn) {
    standin::Host host;
    host.setKeepsCalls(false);
    const std::string id = host.loadAddOn(ADDON_ONE).id;
    load::soak("commands of an add-on, one in twenty refused", load::amount(100000, 100000000), [&](long i) {
        const bool isBad = i % 20 == 0;
        return host.run(id, isBad ? "FAIL no" : "SLEEP 0").accepted != isBad;
    });
    EXPECT_TRUE(host.violations().empty());
}

TEST(Soak, OptionsParsedAndRendered) {
    load::soak("options, one in twenty refused", load::amount(100000, 10000000), [](long i) {
        const std::string number = std::to_string(i);
        if (i % 20 == 0) {
            return refusedAs<UInt64MacroOption>("COUNT=a" + number, nullptr, nullptr) ==
                   "Invalid integer value a" + number;
        }
        const std::string count = "COUNT=" + number;
        const std::string enabled = i % 8 < 4 ? "ENABLED=TRUE" : "ENABLED=FALSE";
        const std::string title = "TITLE=\"a title of more than fifteen characters " + number + '"';
        const std::string zones = "ZONES=[1-3,5," + std::to_string(10 + i) + ']';
        switch (i % 4) {
            case 0: return parsedAs<UInt64MacroOption>(count, nullptr).toString() == count;
            case 1: return parsedAs<BooleanMacroOption>(enabled, nullptr).toString() == enabled;
            case 2: return parsedAs<StringMacroOption>(title, nullptr).toString() == title;
            default: return parsedAs<SetMacroOption>(zones, false, nullptr).toString() == zones;
        }
    });
}

TEST(Soak, FilesOpened) {
    const tests::TemporaryFolder folder;
    std::string rows;
    for (int row = 0; row < 100; ++row) rows += "row " + std::to_string(row) + '\n';
    const std::string small = folder.write("small.txt", "one row");
    const std::string larger = folder.write("larger.txt", rows);
    load::soak("files, one in twenty missing", load::amount(10000, 100000), [&](long i) {
        AsciiFile file;
        if (i % 20 == 0) return !file.open(folder.path("missing.txt"));
        if (i % 2 == 0) return file.open(larger) && file.readLineAtOffset(99) == "row 99";
        return file.open(small) && file.numLinesInFile() == 1;
    });
}

TEST(Soak, AddOnLoadedAndUnloaded) {
    standin::Host host;
    host.setKeepsCalls(false);
    // The host remembers the identities of all former add-ons by their addresses, of which there are few. The other
    // bytes are freed blocks of many sizes, which the C library keeps for the thread. Four times as many loads need no
    // more.
    constexpr std::size_t kRemembered = 80 * 1024;
    const auto loadAndUnload = [&](long) {
        const standin::AddOnInfo info = host.loadAddOn(ADDON_ONE);
        const bool isAccepted = host.run(info.id, "SLEEP 0").accepted;
        host.unloadAddOns();
        return isAccepted && host.addOns().empty();
    };
    load::soak("loads", 10000, loadAndUnload, kRemembered);
    EXPECT_TRUE(host.violations().empty());
}

}  // namespace
}  // namespace vexa::vexautilutil
