// Tests how many findings the host keeps of each rule and add-on.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "vexa/AddOn.h"
#include "vexastandin/Finding.h"
#include "vexastandin/Host.h"

namespace vexa::standin {
namespace {

void breakRule(int times) {
    for (int i = 0; i < times; ++i) VexaUtilArgListClear(nullptr);
}

VexaBoolean breakRule12Times(const char*, char**) { return breakRule(12), 1; }

template <int times>
const VexaAddOn_s* breakRuleWhenLoaded(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "CARELESS", "", breakRule12Times, nullptr};
    breakRule(times);
    return &description;
}

// The number of findings of CARELESS. A finding that was kept for several counts as all of them.
struct Count {
    explicit Count(const Host& host) {
        for (const Finding& finding : host.violations()) {
            EXPECT_EQ(finding.rule, "null-handle");
            EXPECT_EQ(finding.addOnId, "CARELESS");
            ++kept;
            made += 1 + finding.repeats;
        }
    }
    std::size_t kept = 0;
    std::size_t made = 0;
};

TEST(FindingCount, IsOneForLoadingAndCommands) {
    Host host;
    host.linkAddOn(breakRuleWhenLoaded<12>);
    EXPECT_EQ(Count(host).kept, 10u);
    host.run("CARELESS", "");
    EXPECT_EQ(Count(host).kept, 10u);
    EXPECT_EQ(Count(host).made, 24u);
}

TEST(FindingCount, GoesOnWhenTheAddOnIsLoadedAgain) {
    Host host;
    for (std::size_t loaded = 1; loaded <= 3; ++loaded) {
        host.linkAddOn(breakRuleWhenLoaded<6>);
        EXPECT_EQ(Count(host).made, 6 * loaded);
        host.unloadAddOns();
    }
    EXPECT_EQ(Count(host).kept, 10u);
}

TEST(FindingCount, KeepsWhatAFindingStandsFor) {
    Host host;
    host.linkAddOn(breakRuleWhenLoaded<3>);
    host.unloadAddOns();
    host.linkAddOn(breakRuleWhenLoaded<15>);
    EXPECT_EQ(Count(host).kept, 10u);
    EXPECT_EQ(Count(host).made, 18u);
}

TEST(FindingCount, IsOfOneAddOn) {
    Host host;
    Finding finding;
    finding.rule = "null-handle";
    finding.addOnId = "OTHER";
    for (int i = 0; i < 12; ++i) host.report(finding);
    host.linkAddOn(breakRuleWhenLoaded<12>);
    EXPECT_EQ(host.violations().size(), 20u);
}

}  // namespace
}  // namespace vexa::standin
