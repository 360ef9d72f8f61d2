#include "contract/CodeStacks.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "contract/ThrowNotes.h"

namespace vexa::standin {
namespace {

int theFunction = 0;  // its address stands for that of a function

// Says that `theFunction` lies in an object of the path `path`, at the same place of it each time.
struct OneObject : CodeObjectsInterface {
    std::shared_ptr<const CodeObject> objectAt(std::uintptr_t address) override {
        return std::make_shared<CodeObject>(CodeObject{address - 16, path, "", true});
    }
    void forget() override {}

    std::string path = "/add-ons/one.so";
};

const void* handlesNone() { return nullptr; }

TEST(CodeStacks, StackOfTheSamePlacesIsKeptOnceThoughTheAddOnWasLoadedAgain) {
    OneObject objects;
    CodeStacks stacks(objects, handlesNone);
    const std::shared_ptr<const CodeStack> first = stacks.of(&theFunction);
    stacks.forget();
    EXPECT_EQ(stacks.of(&theFunction), first);
}

TEST(CodeStacks, SameAddressIsAnotherPlaceOnceAnotherAddOnIsThere) {
    OneObject objects;
    CodeStacks stacks(objects, handlesNone);
    stacks.of(&theFunction);
    stacks.forget();
    objects.path = "/add-ons/two.so";
    ASSERT_EQ(stacks.of(&theFunction)->size(), 1U);
    EXPECT_EQ(stacks.of(&theFunction)->front().object, "/add-ons/two.so");
}

TEST(CodeStacks, StackOfAThrowIsThatOfTheHandledException) {
    static int exception = 0;
    OneObject objects;
    CodeStacks stacks(objects, [] { return static_cast<const void*>(&exception); });
    EXPECT_EQ(stacks.ofHandledException(), nullptr);
    noteThrow(&exception);
    const std::shared_ptr<const CodeStack> stack = stacks.ofHandledException();
    ASSERT_NE(stack, nullptr);
    EXPECT_EQ(stack->front().object, "/add-ons/one.so");
    EXPECT_EQ(stacks.ofThrow(&exception), stack);
    forgetThrows();
}

}  // namespace
}  // namespace vexa::standin
