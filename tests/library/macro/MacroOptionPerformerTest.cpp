#include "vexautilutil/MacroOptionPerformer.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "support/VirtualSlots.h"
#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/MacroCommandAbstract.h"
#include "vexautilutil/SetMacroOption.h"
#include "vexautilutil/StringMacroOption.h"
#include "vexautilutil/UInt64MacroOption.h"

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

// Records which action was called, and with which option.
class ListActions : public MacroOptionPerformerInterface {
public:
    void action(BooleanMacroOption& option) override { calls += "Boolean " + option.name() + ";"; }
    void action(StringMacroOption& option) override { calls += "String " + option.name() + ";"; }
    void action(SetMacroOption& option) override { calls += "Set " + option.name() + ";"; }
    void action(UInt64MacroOption& option) override { calls += "UInt64 " + option.name() + ";"; }
    std::string calls;
};

class CommandOfAllTypes : public MacroCommandAbstract {
public:
    CommandOfAllTypes() : MacroCommandAbstract("CMD") {
        const toolbox::Set set;
        addOption(std::make_shared<BooleanMacroOption>("A", true, nullptr));
        addOption(std::make_shared<StringMacroOption>("B", "text", nullptr));
        addOption(std::make_shared<SetMacroOption>("C", &set, false, nullptr));
        addOption(std::make_shared<UInt64MacroOption>("D", 1, nullptr));
        addOption(std::make_shared<UInt64MacroOption>("E", 2, nullptr));
    }
    void execute() override {}
};

TEST(MacroOptionPerformer, GetsEveryTypeInItsOwnAction) {
    CommandOfAllTypes command;
    ListActions performer;
    command.forEachOption(performer);
    EXPECT_EQ(performer.calls, "Boolean A;String B;Set C;UInt64 D;UInt64 E;");
}

TEST(MacroOptionPerformerAbstract, IsCalledOncePerOptionOfTheTypeItHandles) {
    class SumUp : public MacroOptionPerformerAbstract {
    public:
        SumUp() : MacroOptionPerformerAbstract(false) {}
        using MacroOptionPerformerAbstract::action;
        void action(UInt64MacroOption& option) override { values.push_back(option.value()); }
        std::vector<uint64_t> values;
    };
    CommandOfAllTypes command;
    SumUp performer;
    command.forEachOption(performer);
    EXPECT_EQ(performer.values, (std::vector<uint64_t>{1, 2}));
}

TEST(MacroOptionPerformerAbstract, LeavesEveryOptionUntouched) {
    for (const bool ignored : {true, false}) {
        MacroOptionPerformerAbstract performer(ignored);
        CommandOfAllTypes command;
        command.forEachOption(performer);
        EXPECT_EQ(command.toString(), "CMD A=TRUE B=\"text\" C=[] D=1 E=2");
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
