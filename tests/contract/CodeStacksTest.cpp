#include "contract/CodeStacks.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

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

TEST(CodeStacks, StackOfTheSamePlacesIsKeptOnceThoughTheAddOnWasLoadedAgain) {
    OneObject objects;
    CodeStacks stacks(objects);
    const std::shared_ptr<const CodeStack> first = stacks.of(&theFunction);
    stacks.forget();
    EXPECT_EQ(stacks.of(&theFunction), first);
}

TEST(CodeStacks, SameAddressIsAnotherPlaceOnceAnotherAddOnIsThere) {
    OneObject objects;
    CodeStacks stacks(objects);
    stacks.of(&theFunction);
    stacks.forget();
    objects.path = "/add-ons/two.so";
    ASSERT_EQ(stacks.of(&theFunction)->size(), 1U);
    EXPECT_EQ(stacks.of(&theFunction)->front().object, "/add-ons/two.so");
}

}  // namespace
}  // namespace vexa::standin
