// Tests whether a thread knows that it runs code of the add-on or of the host.

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "vexa/AddOn.h"
#include "vexastandin/Host.h"

namespace vexa::standin {
namespace {

// An add-on is given nothing of a test's, so this is how it tells what it saw.
bool wasInAddOn = false;

void look() { wasInAddOn = Host::isInAddOn(); }

VexaBoolean execute(const char* command, char**) {
    if (std::strcmp(command, "THROW") == 0) throw std::runtime_error("thrown");
    if (std::strcmp(command, "DIALOG") == 0) VexaUtilDialogErrMsg("text");
    if (std::strcmp(command, "THREAD") == 0) {
        std::thread(look).join();
    } else {
        look();
    }
    return 1;
}

const VexaAddOn_s* entry(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "LOOKING", "", execute, look};
    look();
    return &description;
}

class InAddOn : public testing::Test {
protected:
    InAddOn() { wasInAddOn = false; }

    static bool sawItself() { return std::exchange(wasInAddOn, false); }
};

TEST_F(InAddOn, IsAThreadFromEnteringToLeavingIt) {
    Host host;
    EXPECT_FALSE(Host::isInAddOn());
    host.linkAddOn(entry);
    EXPECT_TRUE(sawItself()) << "in its entry";
    host.run("LOOKING", "LOOK");
    EXPECT_TRUE(sawItself()) << "in a command";
    EXPECT_FALSE(Host::isInAddOn());
    host.unloadAddOns();
    EXPECT_TRUE(sawItself()) << "in its shutdown";
    EXPECT_FALSE(Host::isInAddOn());
}

TEST_F(InAddOn, IsNoThreadThatAnExceptionTookOut) {
    Host host;
    host.linkAddOn(entry);
    host.run("LOOKING", "THROW");
    EXPECT_FALSE(Host::isInAddOn());
}

TEST_F(InAddOn, IsNoThreadThatIsBackInTheHost) {
    Host host;
    host.linkAddOn(entry);
    std::vector<bool> seen;
    host.onDialog([&](const std::string&) { seen.push_back(Host::isInAddOn()); });
    host.run("LOOKING", "DIALOG");
    EXPECT_EQ(seen, std::vector<bool>{false});
    EXPECT_TRUE(sawItself()) << "the call has returned to it";
}

TEST_F(InAddOn, IsNoThreadThatTheAddOnMade) {
    Host host;
    host.linkAddOn(entry);
    sawItself();
    host.run("LOOKING", "THREAD");
    EXPECT_FALSE(sawItself());
}

}  // namespace
}  // namespace vexa::standin
