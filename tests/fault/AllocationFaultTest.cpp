// Tests that every public operation does what its description says if memory runs out, and that no memory leaks.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <numeric>
#include <set>

#include "AllocationFaults.h"

namespace vexa::tests {

void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

namespace {

const std::string kLong = "a text of more than fifteen characters";

std::vector<Operation> everyOperation() {
    std::vector<Operation> all;
    for (const auto& some :
         {hostlibsOperations(), macroOperations(), processorOperations(), hostOperations(), fileOperations()}) {
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

// Makes a test name that GoogleTest accepts: "Set::toString, of many runs" becomes "Set_toString_of_many_runs".
std::string testName(const testing::TestParamInfo<Operation>& info) {
    std::string name;
    for (const char c : std::string(info.param.name)) {
        const bool isPart = std::isalnum(static_cast<unsigned char>(c)) != 0;
        if (isPart) name += c;
        if (!isPart && !name.empty() && name.back() != '_') name += '_';
    }
    while (!name.empty() && name.back() == '_') name.pop_back();
    return name;
}

std::string join(const std::vector<std::string>& lines) {
    return std::accumulate(lines.begin(), lines.end(), std::string(),
                           [](const std::string& text, const std::string& line) { return text + line + '\n'; });
}

bool endsTheProgram(const Operation& operation) {
    const auto& refusals = operation.refusals;
    return std::find(refusals.begin(), refusals.end(), kEndsTheProgram) != refusals.end();
}

void expectSound(const Sweep& sweep) {
    EXPECT_EQ(join(sweep.faults), "");
    EXPECT_GT(sweep.points, 0) << "a sweep without points shows nothing";
}

class AllocationFault : public testing::TestWithParam<Operation> {};

TEST_P(AllocationFault, IsReportedAndLosesNothing) {
    for (const Failing failing : {Failing::Once, Failing::EverAfter}) {
        SCOPED_TRACE(failing == Failing::Once ? "once" : "ever after");
        expectSound(sweepCold(GetParam(), failing));
        if (!endsTheProgram(GetParam())) expectSound(sweepWarm(GetParam(), failing));
    }
}
INSTANTIATE_TEST_SUITE_P(Of, AllocationFault, testing::ValuesIn(everyOperation()), testName);

TEST(AllocationFaults, AreTriedInOperationsThatDiffer) {
    std::set<std::string> names;
    for (const Operation& operation : everyOperation()) {
        EXPECT_TRUE(names.insert(operation.name).second) << operation.name;
    }
}

// ---- Tests of the sweep itself

TEST(AllocationSweep, FindsWhatIsLeftWithTheHost) {
    Operation operation = {"leaves", [](Attempt& a) {
                               std::vector<std::string> host(1);
                               a.makes([&] {
                                   host[0] = kLong;
                                   return std::string(kLong);
                               });
                           }};
    EXPECT_EQ(join(sweepWarm(operation, Failing::Once).faults), "") << "it is the test's own, and freed";
    operation.mostLeft = 0;
    EXPECT_EQ(join(sweepWarm(operation, Failing::Once).faults), "allocation 2: left 1 blocks with the host\n");
}

Operation broken(const char* name, std::function<void(Attempt&)> run) { return {name, std::move(run)}; }

TEST(AllocationSweep, FindsAFailureThatIsSwallowed) {
    const Operation operation = broken("swallows", [](Attempt& a) {
        std::string copy;
        a.changes(
            [&] {
                try {
                    copy = kLong;
                } catch (const std::bad_alloc&) {}
                copy.clear();
            },
            [&] { return copy; });
    });
    EXPECT_EQ(join(sweepWarm(operation, Failing::Once).faults), "allocation 1: the failure was swallowed\n");
    EXPECT_FALSE(sweepCold(operation, Failing::Once).faults.empty());
}

TEST(AllocationSweep, FindsALeak) {
    static std::vector<void*> leaked;
    const Operation operation = broken("leaks", [](Attempt& a) {
        a.makes([] {
            void* const block = ::operator new(100);
            std::string copy;
            try {
                copy = kLong;
            } catch (const std::bad_alloc&) {
                leaked.push_back(block);
                throw;
            }
            ::operator delete(block);
            return copy;
        });
    });
    leaked.reserve(100);
    const std::string faults = join(sweepWarm(operation, Failing::Once).faults);
    for (void* const block : leaked) ::operator delete(block);
    leaked.clear();
    EXPECT_EQ(faults, "allocation 2: leaked 1 blocks\n");
}

TEST(AllocationSweep, FindsAShortenedText) {
    const Operation operation = broken("shortens", [](Attempt& a) {
        a.makes([] {
            try {
                return std::string(kLong);
            } catch (const std::bad_alloc&) {
                return std::string("a text");
            }
        });
    });
    EXPECT_EQ(join(sweepWarm(operation, Failing::Once).faults), "allocation 1: unexpected: a text\n");
}

TEST(AllocationSweep, FindsAnObjectThatIsHalfChanged) {
    const Operation operation = broken("changes half", [](Attempt& a) {
        std::string first;
        std::string second;
        a.changes(
            [&] {
                first = "1";
                second = kLong;
            },
            [&] { return first + second; });
    });
    EXPECT_EQ(join(sweepWarm(operation, Failing::Once).faults), "allocation 1: unexpected: bad_alloc, leaving 1\n");
}

TEST(AllocationSweep, FindsAnEndOfTheProgram) {
    const Operation operation =
        broken("ends", [](Attempt& a) { a.makes([]() noexcept { return std::string(kLong); }); });
    EXPECT_EQ(sweepCold(operation, Failing::Once).faults.at(0), "allocation 1: ended by signal 6");
}

TEST(AllocationSweep, FindsAFirstRunThatSpoilsTheNext) {
    const Operation operation = broken("is spoilt", [](Attempt& a) {
        static int runs = 0;
        a.makes([] { return ++runs < 3 ? std::string(kLong) : std::string(); });
    });
    EXPECT_EQ(sweepCold(operation, Failing::Once).faults.at(0), "allocation 1: works differently afterwards: ");
}

}  // namespace
}  // namespace vexa::tests
