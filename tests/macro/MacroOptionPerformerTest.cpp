#include "vexautilutil/MacroOptionPerformer.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "support/VirtualSlots.h"
#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/MacroCommandAbstract.h"
#include "vexautilutil/SetMacroOption.h"

namespace vexa::vexautilutil {
namespace {

class ListBooleans : public MacroOptionPerformerAbstract {
public:
    ListBooleans() : MacroOptionPerformerAbstract(true) {}
    using MacroOptionPerformerAbstract::action;
    void action(BooleanMacroOption& option) override { visited.push_back(&option); }
    std::vector<BooleanMacroOption*> visited;
};

class ListSets : public MacroOptionPerformerAbstract {
public:
    ListSets() : MacroOptionPerformerAbstract(false) {}
    using MacroOptionPerformerAbstract::action;
    void action(SetMacroOption& option) override { visited.push_back(&option); }
    std::vector<SetMacroOption*> visited;
};

TEST(MacroOptionPerformer, GetsTheOptionItselfInTheActionOfItsType) {
    BooleanMacroOption option("CAPPED", true, nullptr);
    ListBooleans performer;
    MacroOptionInterface& anyOption = option;
    anyOption.perform(performer);
    EXPECT_EQ(performer.visited, std::vector<BooleanMacroOption*>{&option});
}

TEST(MacroOptionPerformer, IsNotCalledForOtherTypes) {
    BooleanMacroOption option("CAPPED", true, nullptr);
    ListSets performer;
    option.perform(performer);
    EXPECT_TRUE(performer.visited.empty());
}

TEST(MacroOptionPerformer, GetsASetOptionInTheActionForSets) {
    const toolbox::Set set;
    SetMacroOption option("ZONES", &set, false, nullptr);
    ListSets performer;
    option.perform(performer);
    EXPECT_EQ(performer.visited, std::vector<SetMacroOption*>{&option});
}

TEST(MacroOptionPerformerAbstract, LeavesEveryOptionUntouched) {
    for (const bool ignored : {true, false}) {
        MacroOptionPerformerAbstract performer(ignored);
        const toolbox::Set set;
        BooleanMacroOption boolean("A", true, nullptr);
        SetMacroOption zones("B", &set, false, nullptr);
        boolean.perform(performer);
        zones.perform(performer);
        EXPECT_EQ(boolean.toString(), "A=TRUE");
        EXPECT_EQ(zones.toString(), "B=[]");
    }
}

TEST(MacroOptionPerformerAbstract, HasNoFields) { EXPECT_EQ(sizeof(MacroOptionPerformerAbstract), sizeof(void*)); }

TEST(MacroOptionPerformerInterface, KeepsTheSlotOrder) {
    using P = MacroOptionPerformerInterface;
    EXPECT_EQ(tests::slotOf(static_cast<void (P::*)(BooleanMacroOption&)>(&P::action)), 0);
    EXPECT_EQ(tests::slotOf(static_cast<void (P::*)(StringMacroOption&)>(&P::action)), 1);
    EXPECT_EQ(tests::slotOf(static_cast<void (P::*)(SetMacroOption&)>(&P::action)), 2);
    EXPECT_EQ(tests::slotOf(static_cast<void (P::*)(UInt64MacroOption&)>(&P::action)), 3);
}

TEST(MacroOptionInterface, KeepsTheSlotOrder) {
    EXPECT_EQ(tests::slotOf(&MacroOptionInterface::perform), 0);
    EXPECT_EQ(tests::slotOf(&MacroOptionInterface::name), 1);
    EXPECT_EQ(tests::slotOf(&MacroOptionInterface::isDefaultValue), 2);
    EXPECT_EQ(tests::slotOf(&MacroOptionInterface::toString), 3);
}

TEST(MacroOptionInterface, DestroysTheWholeOptionThroughASharedPointer) {
    class Watched : public BooleanMacroOption {
    public:
        explicit Watched(bool& gone) : BooleanMacroOption("A", true, nullptr), m_gone(gone) {}
        Watched(const Watched&) = delete;
        Watched& operator=(const Watched&) = delete;
        ~Watched() override { m_gone = true; }

    private:
        bool& m_gone;
    };
    bool gone = false;
    std::shared_ptr<MacroOptionInterface> option(static_cast<MacroOptionInterface*>(new Watched(gone)));
    option.reset();
    EXPECT_TRUE(gone);
}

}  // namespace
}  // namespace vexa::vexautilutil
