#include "AddOnFiles.h"
#include "vexa/AddOn.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "CallTrace.h"
#include "vexa/InvalidArgumentException.h"
#include "vexastandin/Host.h"

namespace vexa::standin {
namespace {

std::string refusalOf(Host& host, const std::string& path) {
    try {
        host.loadAddOn(path);
    } catch (const LoadError& refusal) {
        EXPECT_EQ(refusal.cause(), nullptr) << "it would outlive its code";
        return refusal.what();
    }
    return "accepted";
}

bool isInMemory(const std::string& path) {
    void* const object = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (object != nullptr) dlclose(object);
    return object != nullptr;
}

// If the lock were held, this would wait forever.
bool lockIsFree() {
    std::thread([] {
        VexaUtilLockStart(nullptr);
        VexaUtilLockFinish(nullptr);
    }).join();
    return true;
}

Lines rulesBroken(const Host& host) {
    Lines rules;
    for (const Finding& finding : host.violations()) rules.push_back(finding.rule);
    return rules;
}

// A folder of its own for a test, and the current one while it runs.
class CurrentFolder {
public:
    explicit CurrentFolder(const std::string& path) : m_before(std::filesystem::current_path()) {
        std::filesystem::current_path(path);
    }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;
    ~CurrentFolder() { std::filesystem::current_path(m_before); }

private:
    std::filesystem::path m_before;
};

std::string writtenFile(const std::string& name, const std::string& content) {
    std::string path = testing::TempDir() + name;
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

// ---- Loading

TEST(LoadAddOn, TellsWhatTheAddOnSaysOfItself) {
    Host host;
    const AddOnInfo info = host.loadAddOn(addOnFile("probe"));
    EXPECT_EQ(info.id, "PROBE");
    EXPECT_EQ(info.title, "A probe");
    EXPECT_EQ(info.path, addOnFile("probe"));
}

TEST(LoadAddOn, NeedsNoTitle) {
    Host host;
    EXPECT_EQ(host.loadAddOn(addOnFile("plain")).title, "");
}

TEST(LoadAddOn, LooksForABareNameInTheCurrentFolder) {
    const CurrentFolder here(VEXA_TEST_ADDONS);
    Host host;
    EXPECT_EQ(host.loadAddOn("probe.so").path, "./probe.so");
}

TEST(LoadAddOn, KeepsTheNamesOfAddOnsApart) {
    Host host;
    host.loadAddOn(addOnFile("probe"));
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "vexaAddOn"), nullptr);
}

TEST(LoadAddOn, KeepsTheOrder) {
    Host host;
    EXPECT_TRUE(host.addOns().empty());
    host.loadAddOn(addOnFile("second"));
    host.loadAddOn(addOnFile("probe"));
    const std::vector<AddOnInfo> addOns = host.addOns();
    ASSERT_EQ(addOns.size(), 2U);
    EXPECT_EQ(addOns[0].id, "SECOND");
    EXPECT_EQ(addOns[0].path, addOnFile("second"));
    EXPECT_EQ(addOns[1].id, "PROBE");
}

TEST(LoadAddOn, RefusesFilesThatAreNoAddOns) {
    struct Case {
        const char* why;
        std::string path;
        const char* reason;
    };
    const Case cases[] = {
        {"missing", addOnFile("missing"), "no such file"},
        {"in a missing folder", "/no/such/folder/probe.so", "no such file"},
        {"below a file", addOnFile("probe") + "/probe.so", "no such file"},
        {"a name too long", "/" + std::string(300, 'a'), "File name too long"},
        {"a folder", VEXA_TEST_ADDONS, "it is a folder, not an add-on"},
        {"a device", "/dev/null", "not a regular file"},
        {"text", writtenFile("standin-text.so", "I am an add-on.\n"), "not a shared object"},
        {"nothing", writtenFile("standin-empty.so", ""), "not a shared object"},
        {"cut off",
         writtenFile("standin-cut-off.so",
                     "\x7f"
                     "ELF"),
         "it is truncated"},
        {"needs what is not there", addOnFile("unresolved"), "unresolved symbol suppliedByNobody"},
        {"another library", addOnFile("no-entry"), "it does not export the function vexaAddOn, so it is not an add-on"},
    };
    Host host;
    for (const Case& c : cases) {
        EXPECT_EQ(refusalOf(host, c.path), c.path + ": " + c.reason) << c.why;
        EXPECT_FALSE(isInMemory(c.path)) << c.why;
    }
    EXPECT_TRUE(host.addOns().empty());
}

TEST(LoadAddOn, RefusesAddOnsThatDoNotKeepTheRules) {
    struct Case {
        const char* file;
        const char* reason;
    };
    const Case cases[] = {
        {"throwing", "an exception escaped from its entry vexaAddOn: no licence: ask for one"},
        {"throwing-integer", "an exception of unknown type escaped from its entry vexaAddOn"},
        {"throwing-speechless", "an exception escaped from its entry vexaAddOn: no message"},
        {"throwing-empty", "an exception escaped from its entry vexaAddOn: no message"},
        {"refusing", "it refuses to be loaded (its entry returned null)"},
        {"other-version", "it was built for version 7 of the add-on interface, but the host has version 1"},
        {"null-id", "it has no id"},
        {"empty-id", "it has no id"},
        {"two-words-id", "its id has white space in it: \"TWO WORDS\""},
        {"no-execute", "it has no function to execute commands"},
    };
    Host host;
    for (const Case& c : cases) {
        EXPECT_EQ(refusalOf(host, addOnFile(c.file)), addOnFile(c.file) + ": " + c.reason);
        EXPECT_FALSE(isInMemory(addOnFile(c.file))) << c.file;
    }
    EXPECT_TRUE(host.addOns().empty());
}

TEST(LoadAddOn, RefusesAnIdThatIsTaken) {
    Host host;
    host.loadAddOn(addOnFile("second"));
    host.loadAddOn(addOnFile("probe"));
    EXPECT_EQ(refusalOf(host, addOnFile("same-id")),
              addOnFile("same-id") + ": an add-on PROBE is already loaded, from " + addOnFile("probe"));
    EXPECT_FALSE(isInMemory(addOnFile("same-id")));
    EXPECT_EQ(host.addOns().size(), 2U);
}

TEST(LoadAddOn, DoesNotEnterAnAddOnTwice) {
    Host host;
    host.loadAddOn(addOnFile("probe"));
    const std::string otherName = testing::TempDir() + "standin-link.so";
    std::filesystem::remove(otherName);
    std::filesystem::create_symlink(addOnFile("probe"), otherName);
    EXPECT_EQ(refusalOf(host, otherName),
              otherName + ": an add-on PROBE is already loaded, from " + addOnFile("probe"));
    EXPECT_TRUE(host.run("PROBE", "LOCK IN PAIRS").accepted);
    EXPECT_EQ(traceOf(host), Lines({"VexaUtilLockStart(PROBE)", "VexaUtilLockFinish(PROBE)"}));
}

TEST(LoadAddOn, DoesNotShutDownWhatItRefuses) {
    Host host;
    host.loadAddOn(addOnFile("probe"));
    refusalOf(host, addOnFile("same-id"));
    EXPECT_EQ(host.dialogs(), Lines({"PROBE is unloaded"}));  // the refused one
}

TEST(LoadAddOn, TakesBackALockThatTheEntryLeavesOpen) {
    Host host;
    host.loadAddOn(addOnFile("plain"));
    EXPECT_TRUE(lockIsFree());
}

TEST(LoadAddOn, TakesBackALockOfAnAddOnItRefuses) {
    Host host;
    EXPECT_NE(refusalOf(host, addOnFile("no-execute")), "accepted");
    EXPECT_TRUE(lockIsFree());
}

// ---- Linking

VexaBoolean showCommand(const char* command, char**) {
    VexaUtilDialogErrMsg(command);
    return 1;
}
void showShutdown() { VexaUtilDialogErrMsg("shuts down"); }

const VexaAddOn_s* linkedEntry(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "LINKED", "A part", showCommand, showShutdown};
    VexaUtilDialogErrMsg("entered");
    return &description;
}

const VexaAddOn_s* probeEntry(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "PROBE", nullptr, showCommand, showShutdown};
    return &description;
}

const VexaAddOn_s* noExecuteEntry(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "LINKED", nullptr, nullptr, showShutdown};
    return &description;
}

const VexaAddOn_s* throwingEntry(AddOnList_s*) { throw std::runtime_error("no licence"); }

std::string refusalOf(Host& host, AddOnEntry entry) {
    try {
        host.linkAddOn(entry);
    } catch (const LoadError& refusal) {
        return refusal.what();
    }
    return "accepted";
}

TEST(LinkAddOn, TellsWhatTheAddOnSaysOfItself) {
    Host host;
    const AddOnInfo info = host.linkAddOn(linkedEntry);
    EXPECT_EQ(info.id, "LINKED");
    EXPECT_EQ(info.title, "A part");
    EXPECT_EQ(info.path, "(linked in)");
}

TEST(LinkAddOn, RefusesWhatDoesNotKeepTheRules) {
    struct Case {
        const char* why;
        AddOnEntry entry;
        const char* reason;
    };
    const Case cases[] = {
        {"nothing to call", nullptr, "its entry is null"},
        {"an exception", throwingEntry, "an exception escaped from its entry vexaAddOn: no licence"},
        {"no execute", noExecuteEntry, "it has no function to execute commands"},
    };
    Host host;
    for (const Case& c : cases) EXPECT_EQ(refusalOf(host, c.entry), std::string("(linked in): ") + c.reason) << c.why;
    EXPECT_TRUE(host.addOns().empty());
    EXPECT_EQ(host.dialogs(), Lines()) << "what is refused is not shut down";
}

TEST(LinkAddOn, DoesNotEnterAnAddOnTwice) {
    Host host;
    host.linkAddOn(linkedEntry);
    EXPECT_EQ(refusalOf(host, linkedEntry), "(linked in): an add-on LINKED is already loaded, from (linked in)");
    EXPECT_EQ(host.dialogs(), Lines({"entered"}));
    EXPECT_EQ(host.addOns().size(), 1U);
}

TEST(LinkAddOn, RefusesAnIdThatIsTaken) {
    Host host;
    host.loadAddOn(addOnFile("probe"));
    EXPECT_EQ(refusalOf(host, probeEntry),
              "(linked in): an add-on PROBE is already loaded, from " + addOnFile("probe"));
}

TEST(LinkAddOn, StandsBesideLoadedAddOns) {
    Host host;
    host.loadAddOn(addOnFile("probe"));
    host.linkAddOn(linkedEntry);
    host.run("LINKED", "shown by LINKED");
    host.run("PROBE", "SHOW");
    host.unloadAddOns();
    EXPECT_EQ(host.dialogs(), Lines({"entered", "shown by LINKED", "shown by PROBE", "shuts down", "PROBE shuts down",
                                     "PROBE is unloaded"}));
    EXPECT_TRUE(host.addOns().empty());
}

TEST(LinkAddOn, MayBeDoneAgainAfterUnloading) {
    Host host;
    host.linkAddOn(linkedEntry);
    host.unloadAddOns();
    EXPECT_EQ(refusalOf(host, linkedEntry), "accepted");
}

// ---- Running commands

CommandResult runProbe(const std::string& command) {
    Host host;
    host.loadAddOn(addOnFile("probe"));
    return host.run("PROBE", command);
}

TEST(Run, TellsWhatCameOfTheCommand) {
    struct Case {
        const char* command;
        bool accepted;
        const char* error;
    };
    const Case cases[] = {
        {"SUCCEED", true, ""},
        {"FAIL", false, "it went wrong\n\n"},
        {"FAIL SILENTLY", false, ""},
        {"FAIL ODDLY", false, ""},
        {"FAIL WITH A FOREIGN STRING", false, "my own text"},
        {"FAIL WITHOUT A ZERO", false, "no"},
        {"SUCCEED WITH AN ERROR STRING", true, ""},
        {"THROW", false, "an exception escaped from the add-on: no such zone"},
        {"THROW AN INTEGER", false, "an exception of unknown type escaped from the add-on"},
        {"THROW WITH AN ERROR STRING", false, "an exception escaped from the add-on: no such zone"},
        {"LOCK IN PAIRS", true, ""},
        {"PROGRESS", true, ""},
        {"LOCK", true, ""},
        {"LOCK TWICE", true, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.command);
        const CommandResult result = runProbe(c.command);
        EXPECT_EQ(result.accepted, c.accepted);
        EXPECT_EQ(result.error, c.error);
    }
}

TEST(Run, NeedsALoadedAddOn) {
    Host host;
    host.loadAddOn(addOnFile("probe"));
    try {
        host.run("probe", "SUCCEED");
        FAIL() << "the id differs in case";
    } catch (const InvalidArgumentException& refusal) {
        EXPECT_STREQ(refusal.what(), "No add-on \"probe\" is loaded");
    }
}

TEST(Run, AddressesTheAddOnById) {
    Host host;
    host.loadAddOn(addOnFile("probe"));
    host.loadAddOn(addOnFile("second"));
    host.run("SECOND", "SHOW");
    host.run("PROBE", "SHOW");
    EXPECT_EQ(host.dialogs(), Lines({"shown by SECOND", "shown by PROBE"}));
}

TEST(Run, ReleasesTheErrorString) {
    for (const char* command : {"FAIL", "SUCCEED WITH AN ERROR STRING", "THROW WITH AN ERROR STRING"}) {
        SCOPED_TRACE(command);
        Host host;
        host.loadAddOn(addOnFile("probe"));
        host.run("PROBE", command);
        host.clearCalls();
        host.run("PROBE", "FREE THE LAST STRING");
        EXPECT_EQ(traceOf(host), Lines({"VexaUtilStringDealloc(unknown)"}));  // for it was released before
    }
}

TEST(Run, TakesBackALockTheCommandLeavesOpen) {
    for (const char* command : {"LOCK", "LOCK TWICE", "LOCK AND THROW"}) {
        SCOPED_TRACE(command);
        Host host;
        host.loadAddOn(addOnFile("probe"));
        host.run("PROBE", command);
        EXPECT_TRUE(lockIsFree());
    }
}

TEST(Run, TakesDownAStatusLineThatTheCommandLeftUp) {
    Host host;
    host.loadAddOn(addOnFile("probe"));
    std::vector<bool> shown;
    host.onStatus([&](const StatusLine& line) { shown.push_back(line.active); });
    host.run("PROBE", "PROGRESS");
    EXPECT_FALSE(host.statusLine().active);
    EXPECT_EQ(shown, std::vector<bool>({true, false}));
}

TEST(Run, LeavesAStatusLineThatWasUpBefore) {
    Host host;
    host.loadAddOn(addOnFile("probe"));
    VexaUtilStatusStartPercentDone("before", 1, 1);
    host.run("PROBE", "SUCCEED");
    EXPECT_TRUE(host.statusLine().active);
}

TEST(Run, LeavesALockThatWasHeldBefore) {
    Host host;
    host.loadAddOn(addOnFile("probe"));
    VexaUtilLockStart(nullptr);
    host.run("PROBE", "LOCK");
    host.clearCalls();
    bool isGivenBack = false;
    std::thread other([&] {
        VexaUtilLockStart(nullptr);
        EXPECT_TRUE(isGivenBack);
        VexaUtilLockFinish(nullptr);
    });
    while (host.calledFunctions().empty()) std::this_thread::yield();
    isGivenBack = true;
    VexaUtilLockFinish(nullptr);
    other.join();
}

TEST(Run, SurvivesAnUnloadingFromWithin) {
    Host host;
    host.loadAddOn(addOnFile("probe"));
    host.onDialog([&](const std::string& text) {
        if (text == "shown by PROBE") host.unloadAddOns();
    });
    EXPECT_TRUE(host.run("PROBE", "SHOW").accepted);
    EXPECT_TRUE(host.addOns().empty());
    EXPECT_FALSE(isInMemory(addOnFile("probe")));
}

// ---- Unloading

TEST(UnloadAddOns, ShutsDownAndUnloadsTheLastLoadedFirst) {
    Host host;
    host.loadAddOn(addOnFile("probe"));
    host.loadAddOn(addOnFile("second"));
    host.unloadAddOns();
    EXPECT_EQ(host.dialogs(),
              Lines({"SECOND shuts down", "SECOND is unloaded", "PROBE shuts down", "PROBE is unloaded"}));
    EXPECT_TRUE(host.addOns().empty());
    EXPECT_FALSE(isInMemory(addOnFile("probe")));
    EXPECT_FALSE(isInMemory(addOnFile("second")));
}

TEST(UnloadAddOns, NeedsNoShutdown) {
    Host host;
    host.loadAddOn(addOnFile("plain"));
    host.unloadAddOns();
    EXPECT_FALSE(isInMemory(addOnFile("plain")));
}

TEST(UnloadAddOns, FindsWhatGoesWrongAndGoesOn) {
    Host host;
    host.loadAddOn(addOnFile("probe"));
    host.loadAddOn(addOnFile("second"));
    host.run("SECOND", "LET SHUTDOWN THROW");
    host.run("SECOND", "LET SHUTDOWN LOCK");
    host.unloadAddOns();
    EXPECT_EQ(rulesBroken(host), Lines({"escaped-exception", "unbalanced-lock"}));
    EXPECT_EQ(host.dialogs().back(), "PROBE is unloaded");
    EXPECT_TRUE(lockIsFree());
}

TEST(UnloadAddOns, MakesRoomForLoadingAgain) {
    Host host;
    host.loadAddOn(addOnFile("probe"));
    host.unloadAddOns();
    host.loadAddOn(addOnFile("same-id"));
    EXPECT_TRUE(host.run("PROBE", "SUCCEED").accepted);
}

TEST(UnloadAddOns, IsDoneByTheHostsEnd) {
    Lines shown;
    {
        Host host;
        host.onDialog([&](const std::string& text) { shown.push_back(text); });
        host.loadAddOn(addOnFile("probe"));
        host.loadAddOn(addOnFile("second"));
        host.run("SECOND", "LET SHUTDOWN THROW");
    }
    EXPECT_EQ(shown, Lines({"SECOND shuts down", "SECOND is unloaded", "PROBE shuts down", "PROBE is unloaded"}));
    EXPECT_FALSE(isInMemory(addOnFile("probe")));
}

TEST(UnloadAddOns, IsFollowedByTheReleaseOfWhatAddOnsLeft) {
    Host host;
    host.loadAddOn(addOnFile("probe"));
    EXPECT_TRUE(host.run("PROBE", "LEAK").accepted);
    // What the host releases at its end is seen by the leak checker.
}

}  // namespace
}  // namespace vexa::standin
