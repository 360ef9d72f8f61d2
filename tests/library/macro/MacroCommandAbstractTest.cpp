#include "vexautilutil/MacroCommandAbstract.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <stdexcept>
#include <type_traits>

#include "library/macro/Tokens.h"
#include "support/VirtualSlots.h"
#include "vexautilutil/BooleanMacroOption.h"

namespace vexa::vexautilutil {
namespace {

class Command : public MacroCommandAbstract {
public:
    using MacroCommandAbstract::MacroCommandAbstract;
    void execute() override {}
};

std::shared_ptr<MacroOptionInterface> option(const std::string& name, bool value = true,
                                             const bool* defaultValue = nullptr) {
    return std::make_shared<BooleanMacroOption>(name, value, defaultValue);
}

class ListNames : public MacroOptionPerformerAbstract {
public:
    ListNames() : MacroOptionPerformerAbstract(false) {}
    using MacroOptionPerformerAbstract::action;
    void action(BooleanMacroOption& visited) override {
        names.push_back(visited.name());
        if (visited.name() == "THROW") throw std::runtime_error("stop here");
    }
    std::vector<std::string> names;
};

TEST(MacroCommand, RendersItsNameAloneWithoutOptions) { EXPECT_EQ(Command("CMD").toString(), "CMD"); }

TEST(MacroCommand, KeepsItsNameVerbatim) {
    for (const char* name : {"", " ", "two words", "Mixed"}) {
        const Command command(name);
        EXPECT_EQ(command.name(), name);
        EXPECT_EQ(command.toString(), name);
    }
}

TEST(MacroCommand, RendersOptionsInAscendingOrderOfNames) {
    Command command("CMD");
    command.addOption(option("ENABLED"));
    command.addOption(option("COUNTED", false));
    EXPECT_EQ(command.toString(), "CMD COUNTED=FALSE ENABLED=TRUE");
}

TEST(MacroCommand, SortsLowerCaseNamesAfterUpperCaseOnes) {
    Command command("CMD");
    command.addOption(option("a"));
    command.addOption(option("Z"));
    EXPECT_EQ(command.toString(), "CMD Z=TRUE a=TRUE");
}

TEST(MacroCommand, LeavesOutAnOptionAtItsDefault) {
    const bool byDefault = true;
    Command command("CMD");
    command.addOption(option("A", true, &byDefault));
    command.addOption(option("B", false, &byDefault));
    EXPECT_EQ(command.toString(), "CMD B=FALSE");
}

TEST(MacroCommand, RendersItsBareNameWhenAllOptionsAreAtTheirDefaults) {
    const bool byDefault = true;
    Command command("CMD");
    command.addOption(option("A", true, &byDefault));
    EXPECT_EQ(command.toString(), "CMD");
}

TEST(MacroCommand, RendersItsOwnNameWhateverADerivedClassAnswers) {
    class Renamed : public Command {
    public:
        Renamed() : Command("CMD") {}
        std::string name() const override { return "OTHER"; }
    };
    EXPECT_EQ(Renamed().toString(), "CMD");
}

TEST(MacroCommand, RefusesASecondOptionOfTheSameName) {
    Command command("CMD");
    command.addOption(option("COUNT", true));
    const auto second = option("COUNT", false);
    EXPECT_EQ(refusalOf([&] { command.addOption(second); }), "Duplicate macro command option COUNT");
    EXPECT_EQ(command.toString(), "CMD COUNT=TRUE");
    EXPECT_EQ(second.use_count(), 1) << "the refused option is not kept";
}

TEST(MacroCommand, TakesNamesThatDifferInLetterCaseForTwo) {
    Command command("CMD");
    command.addOption(option("COUNT"));
    command.addOption(option("Count"));
    EXPECT_EQ(command.toString(), "CMD COUNT=TRUE Count=TRUE");
}

TEST(MacroCommand, SharesItsOptions) {
    const auto shared = option("A");
    {
        Command command("CMD");
        command.addOption(shared);
        EXPECT_EQ(shared.use_count(), 2);
        EXPECT_EQ(command.options().at("A"), shared);
    }
    EXPECT_EQ(shared.use_count(), 1);
}

TEST(MacroCommand, HandsOutItsLiveOptions) {
    Command command("CMD");
    command.options()["A"] = option("A");
    EXPECT_EQ(command.toString(), "CMD A=TRUE");
    command.options().erase("A");
    EXPECT_EQ(command.toString(), "CMD");
}

TEST(MacroCommand, SharesOptionsWithItsCopy) {
    Command command("CMD");
    command.addOption(option("A"));
    Command copy(command);
    copy.addOption(option("B"));
    EXPECT_EQ(copy.options().at("A"), command.options().at("A"));
    EXPECT_EQ(command.toString(), "CMD A=TRUE");
}

TEST(ForEachOption, VisitsAllInAscendingOrderOfNames) {
    const bool byDefault = true;
    Command command("CMD");
    command.addOption(option("B"));
    command.addOption(option("A", true, &byDefault));
    command.addOption(option("C"));
    ListNames performer;
    command.forEachOption(performer);
    EXPECT_EQ(performer.names, (std::vector<std::string>{"A", "B", "C"}));
}

TEST(ForEachOption, EndsWithWhatThePerformerThrows) {
    Command command("CMD");
    command.addOption(option("A"));
    command.addOption(option("THROW"));
    command.addOption(option("Z"));
    ListNames performer;
    EXPECT_THROW(command.forEachOption(performer), std::runtime_error);
    EXPECT_EQ(performer.names, (std::vector<std::string>{"A", "THROW"}));
}

TEST(MacroCommand, KeepsTheSlotOrder) {
    EXPECT_EQ(tests::slotOf(&MacroCommandAbstract::execute), 2);
    EXPECT_EQ(tests::slotOf(&MacroCommandAbstract::forEachOption), 3);
    EXPECT_EQ(tests::slotOf(&MacroCommandAbstract::name), 4);
    EXPECT_EQ(tests::slotOf(&MacroCommandAbstract::toString), 5);
    EXPECT_EQ(tests::slotOf(&MacroCommandAbstract::addOption), -1);
}

TEST(MacroCommand, KeepsTheFieldOrder) {
    Command command("CMD");
    EXPECT_EQ(tests::fieldAt<std::string>(command, sizeof(void*)), "CMD");
    EXPECT_EQ(&tests::fieldAt<MacroCommandAbstract::OptionMap>(command, sizeof(void*) + sizeof(std::string)),
              &command.options());
    EXPECT_EQ(sizeof(MacroCommandAbstract),
              sizeof(void*) + sizeof(std::string) + sizeof(MacroCommandAbstract::OptionMap));
    static_assert(std::is_abstract_v<MacroCommandAbstract>);
}

// Reads a command as an add-on does: skips the blanks and parses one option after another.
RC_GTEST_PROP(MacroCommand, IsReadBackFromItsText, ()) {
    const auto values = *rc::gen::container<std::map<std::string, bool>>(
        rc::gen::nonEmpty(rc::gen::container<std::string>(rc::gen::elementOf(std::string("abcXYZ")))),
        rc::gen::arbitrary<bool>());
    Command command("CMD");
    for (const auto& [name, value] : values) command.addOption(option(name, value));

    Tokens tokens(command.toString());
    Command readBack(parseIdentifier(tokens.current, tokens.end));
    while (tokens.current != tokens.end) {
        RC_ASSERT(*tokens.current == " ");
        ++tokens.current;
        readBack.addOption(std::make_shared<BooleanMacroOption>(tokens.current, tokens.end, nullptr));
    }
    RC_ASSERT(readBack.toString() == command.toString());
    RC_ASSERT(readBack.options().size() == values.size());
}

}  // namespace
}  // namespace vexa::vexautilutil
