#include "stacks/Symbols.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace vexa::runner {
namespace {

const char* const kObjects[] = {MARKED_OBJECTS};

struct Close {
    void operator()(void* object) const { dlclose(object); }
};

// The line of the source with a mark, found by reading the source.
std::size_t lineOf(const std::string& mark) {
    std::ifstream source(MARKED_SOURCE);
    std::string line;
    for (std::size_t number = 1; std::getline(source, line); ++number) {
        const std::size_t place = line.rfind("// MARK " + mark);
        if (place != std::string::npos && line.size() == place + 8 + mark.size()) return number;
    }
    return 0;
}

// A place that a function of a shared object returns.
class MarkedPlace {
public:
    MarkedPlace(const std::string& object, const char* function)
        : m_object(dlopen(object.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        auto* const find = reinterpret_cast<const void* (*)(int*)>(dlsym(m_object.get(), function));
        int calls = 0;
        const void* const address = find(&calls);
        Dl_info info{};
        dladdr(address, &info);
        m_offset =
            static_cast<std::uintptr_t>(static_cast<const char*>(address) - static_cast<const char*>(info.dli_fbase)) -
            1;
    }

    std::uintptr_t offset() const { return m_offset; }

private:
    std::unique_ptr<void, Close> m_object;
    std::uintptr_t m_offset = 0;
};

bool hasLines(const std::string& object) { return object.find("-lines.so") != std::string::npos; }

class SymbolsOf : public testing::TestWithParam<const char*> {
protected:
    Stack framesAt(const char* function) {
        return m_symbols.framesAt(GetParam(), MarkedPlace(GetParam(), function).offset());
    }

    Symbols m_symbols;
};

std::string variantOf(const testing::TestParamInfo<const char*>& info) {
    std::string name = std::filesystem::path(info.param).stem();
    for (char& c : name) c = c == '-' ? '_' : c;
    return name;
}

TEST_P(SymbolsOf, NameTheLineAndTheFunction) {
    const Stack frames = framesAt("plain");
    ASSERT_FALSE(frames.empty());
    EXPECT_EQ(frames[0].object, GetParam());
    if (hasLines(GetParam())) {
        EXPECT_EQ(frames[0].function, "marked::plainPlace(int&)");
        EXPECT_EQ(frames[0].file, MARKED_SOURCE);
        EXPECT_EQ(frames[0].line, lineOf("plain"));
    } else {
        EXPECT_EQ(frames.size(), 1U);
        EXPECT_NE(frames[0].offset, 0U);
        EXPECT_EQ(frames[0].line, 0U);
        EXPECT_EQ(frames[0].file, "");
    }
}

TEST_P(SymbolsOf, NameTheStartOfAFunction) {
    Symbols symbols;
    const Frame frame = symbols.functionAt(GetParam(), MarkedPlace(GetParam(), "plain").offset());
    EXPECT_EQ(frame.object, GetParam());
    EXPECT_EQ(frame.line, hasLines(GetParam()) ? lineOf("function") : 0U);
    const std::string name = hasLines(GetParam()) ? "marked::plainPlace(int&)" : frame.function;
    EXPECT_EQ(frame.function, name);
}

TEST_P(SymbolsOf, NameAFunctionThatWasInlined) {
    const Stack frames = framesAt("outer");
    if (!hasLines(GetParam())) {
        ASSERT_EQ(frames.size(), 1U);
        EXPECT_EQ(frames[0].function, "outer");
        return;
    }
    ASSERT_EQ(frames.size(), 2U);
    EXPECT_NE(frames[0].function.find("inlinedPlace"), std::string::npos) << frames[0].function;
    EXPECT_EQ(frames[0].line, lineOf("inlined"));
    EXPECT_EQ(frames[1].function, "outer");
    EXPECT_EQ(frames[1].file, MARKED_SOURCE);
    EXPECT_EQ(frames[1].line, lineOf("outer"));
}

TEST_P(SymbolsOf, NameOnlyTheOffsetIfTheFileWasBuiltAgain) {
    const std::uintptr_t offset = MarkedPlace(GetParam(), "outer").offset();
    const Stack frames = m_symbols.framesAt(GetParam(), offset, "0123456789abcdef");
    ASSERT_EQ(frames.size(), 1U);
    EXPECT_EQ(frames[0].function, "");
    EXPECT_EQ(frames[0].line, 0U);
    EXPECT_EQ(frames[0].object, GetParam());
    EXPECT_EQ(frames[0].offset, offset);
}

INSTANTIATE_TEST_SUITE_P(Variants, SymbolsOf, testing::ValuesIn(kObjects), variantOf);

TEST(Symbols, NameOnlyTheOffsetIfThereIsNoFile) {
    Symbols symbols;
    for (const char* const object : {"/no/such.so", "/dev/null", MARKED_SOURCE, "linux-vdso.so.1", ""}) {
        const Stack frames = symbols.framesAt(object, 0x1234);
        ASSERT_EQ(frames.size(), 1U) << object;
        EXPECT_EQ(frames[0].function, "") << object;
        EXPECT_EQ(frames[0].object, object);
        EXPECT_EQ(frames[0].offset, 0x1234U);
    }
}

TEST(Symbols, NameNoFunctionForAPlaceOutsideOfAll) {
    Symbols symbols;
    for (const std::uintptr_t offset : {std::uintptr_t{0}, std::uintptr_t{1} << 40, ~std::uintptr_t{0}}) {
        const Stack frames = symbols.framesAt(kObjects[0], offset);
        ASSERT_EQ(frames.size(), 1U);
        EXPECT_EQ(frames[0].function, "");
        EXPECT_EQ(frames[0].offset, offset);
    }
}

}  // namespace
}  // namespace vexa::runner
