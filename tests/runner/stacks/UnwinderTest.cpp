#include "stacks/Unwinder.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "runner/system/processes/TracedChild.h"
#include "stacks/Symbols.h"

// Functions with C names, so that a test finds them by name.
extern "C" {

volatile int unwinderTestDepth = 0;
void (*volatile unwinderTestNothing)() = nullptr;

[[gnu::noinline]] void unwinderTestInner() {
    raise(SIGABRT);
    unwinderTestDepth = 0;
}

[[gnu::noinline]] void unwinderTestOuter() {
    unwinderTestInner();
    unwinderTestDepth = 0;
}

void (*unwinderTestCallBack)(void (*function)(), int* calls) = nullptr;

[[gnu::noinline]] void unwinderTestThroughLibrary() {
    int calls = 0;
    unwinderTestCallBack(unwinderTestInner, &calls);
    unwinderTestDepth = calls;
}

// Sanitizers would end the process before the call.
__attribute__((noinline, no_sanitize("undefined"))) void unwinderTestWildCall() {
    unwinderTestNothing();
    unwinderTestDepth = 0;
}

[[gnu::noinline]] void unwinderTestRecursion() {
    if (++unwinderTestDepth == 200) raise(SIGABRT);
    if (unwinderTestDepth != 0) unwinderTestRecursion();
    unwinderTestDepth = 0;
}
}

namespace vexa::runner {
namespace {

const char* const kLibraries[] = {MARKED_OBJECTS};

// The places on the stack of a process when a signal is about to end it.
CodePlaces placesAtTheEndOf(void (*work)()) {
    CodePlaces places;
    ThreadTracer tracer([&](const ThreadTracer::Ending& ending) {
        const Descriptor memory(open(("/proc/" + std::to_string(ending.process) + "/mem").c_str(), O_RDONLY));
        const auto registers = registersOf(ending.thread);
        ASSERT_TRUE(registers);
        places = Unwinder(ending.process, memory).placesOf(*registers);
    });
    TracedChild child(work);
    EXPECT_EQ(tracer.trace(child.id(), true), 0);
    child.go();
    child.endUnder(tracer);
    return places;
}

// The index of the first place in a function of this program; the number of places if there is none.
std::size_t indexOf(const CodePlaces& places, const std::string& function) {
    static Symbols symbols;
    std::size_t i = 0;
    for (; i != places.places.size(); ++i) {
        const UnwoundPlace& place = places.places[i];
        if (!place.object.empty() && symbols.framesAt(place.object, place.offset).back().function == function) break;
    }
    return i;
}

TEST(Unwinder, FindsTheCallers) {
    const CodePlaces places = placesAtTheEndOf(unwinderTestOuter);
    const std::size_t inner = indexOf(places, "unwinderTestInner");
    ASSERT_LT(inner + 1, places.places.size());
    EXPECT_EQ(indexOf(places, "unwinderTestOuter"), inner + 1);
    EXPECT_EQ(places.places[inner].object, std::filesystem::read_symlink("/proc/self/exe").string());
    EXPECT_EQ(places.leftOut, 0U);
}

// A library, and its file once more, directly below the library.
class LibraryMappedTwice {
public:
    LibraryMappedTwice() : m_library(dlopen(kLibraries[0], RTLD_NOW)) {
        Dl_info info{};
        unwinderTestCallBack = reinterpret_cast<decltype(unwinderTestCallBack)>(dlsym(m_library, "callBack"));
        dladdr(reinterpret_cast<void*>(unwinderTestCallBack), &info);
        const Descriptor file(open(info.dli_fname, O_RDONLY));
        m_size = (std::filesystem::file_size(info.dli_fname) + kPage - 1) / kPage * kPage;
        void* const place = static_cast<char*>(info.dli_fbase) - m_size;
        m_copy = mmap(place, m_size, PROT_READ, MAP_PRIVATE | MAP_FIXED_NOREPLACE, file.get(), 0);
    }
    LibraryMappedTwice(const LibraryMappedTwice&) = delete;
    LibraryMappedTwice& operator=(const LibraryMappedTwice&) = delete;
    ~LibraryMappedTwice() {
        if (isMappedTwice()) munmap(m_copy, m_size);
        dlclose(m_library);
    }

    bool isMappedTwice() const { return m_copy != MAP_FAILED; }

private:
    static constexpr std::size_t kPage = 4096;

    void* m_library;
    std::size_t m_size = 0;
    void* m_copy = MAP_FAILED;
};

TEST(Unwinder, FindsTheCallersInALibraryWhoseFileIsMappedTwice) {
    const LibraryMappedTwice library;
    if (!library.isMappedTwice()) GTEST_SKIP() << "another test has mapped something directly below the library";
    const CodePlaces places = placesAtTheEndOf(unwinderTestThroughLibrary);
    const std::size_t inLibrary = indexOf(places, "callBack");
    ASSERT_LT(inLibrary + 1, places.places.size());
    EXPECT_EQ(indexOf(places, "unwinderTestThroughLibrary"), inLibrary + 1);
}

TEST(Unwinder, FindsTheCallerOfABadPointer) {
    const CodePlaces places = placesAtTheEndOf(unwinderTestWildCall);
    ASSERT_GT(places.places.size(), 2U);
    EXPECT_EQ(places.places[0].object, "");
    EXPECT_EQ(places.places[0].offset, 0U);
    EXPECT_EQ(indexOf(places, "unwinderTestWildCall"), 1U);
}

TEST(Unwinder, CountsTheFramesOfADeepStack) {
    const CodePlaces places = placesAtTheEndOf(unwinderTestRecursion);
    EXPECT_EQ(places.places.size(), 64U);
    EXPECT_GT(places.leftOut, 130U);
    EXPECT_TRUE(places.isCounted);
}

}  // namespace
}  // namespace vexa::runner
