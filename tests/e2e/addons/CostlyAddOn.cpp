// An add-on whose commands cost what they say: `BLOCKS 3 SIZE 100` allocates three blocks, and then frees them.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include "vexa/AddOn.h"

namespace {

constexpr int kMostBlocks = 100;

void* volatile keptBlock = nullptr;

void useBlocks(int count, std::size_t size) {
    void* volatile blocks[kMostBlocks];
    for (int i = 0; i != count; ++i) blocks[i] = std::malloc(size);
    for (int i = 0; i != count; ++i) std::free(blocks[i]);
}

// Each function of the C library that allocates, once, with 64 bytes each.
void allocateInEachWay() {
    void* block = nullptr;
    std::free(std::malloc(64));
    std::free(std::calloc(8, 8));
    void* volatile grown = std::realloc(nullptr, 32);
    std::free(std::realloc(grown, 64));
    std::free(std::aligned_alloc(64, 64));
    if (posix_memalign(&block, 64, 64) == 0) std::free(block);
    std::free(reallocarray(nullptr, 8, 8));
    char* volatile text = strdup("a text of 63 characters, so that with its end it has 64 of them");
    std::free(text);
    char* volatile made = new char[64];
    delete[] made;
}

VexaBoolean execute(const char* text, char**) {
    int count = 0;
    std::size_t size = 0;
    if (std::sscanf(text, "BLOCKS %d SIZE %zu", &count, &size) == 2 && count <= kMostBlocks) {
        useBlocks(count, size);
    } else if (std::sscanf(text, "THREAD %zu", &size) == 1) {
        std::thread([size] { useBlocks(10, size); }).join();
    } else if (std::sscanf(text, "KEEP %zu", &size) == 1) {
        std::free(keptBlock);
        keptBlock = std::malloc(size);
    } else if (std::strcmp(text, "FREEELSEWHERE") == 0) {
        void* volatile block = std::malloc(100);
        std::thread([&block] { std::free(block); }).join();
        useBlocks(1, 100);
    } else if (std::sscanf(text, "CALLS %d", &count) == 1) {
        for (int i = 0; i != count; ++i) VexaUtilMacroIsBatchModeActive();
    } else if (std::strcmp(text, "HOSTSTRING") == 0) {
        char* string = VexaUtilStringAlloc(5000, "a text");
        VexaUtilStringDealloc(&string);
    } else if (std::strcmp(text, "EACHWAY") == 0) {
        allocateInEachWay();
    } else if (std::strcmp(text, "PRELOADED") == 0) {
        const char* const value = std::getenv("LD_PRELOAD");
        std::printf("%s\n", value == nullptr ? "nothing" : value);
    } else {
        return 0;
    }
    return 1;
}

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "COSTLY", "", execute, nullptr};
    return &description;
}
