#pragma once

#include <cstddef>
#include <cstdio>

namespace vexa::vexautilutil {

// Advises the kernel to use large pages for the `size` bytes at `begin`. The kernel may ignore the advice.
void preferLargePages(void* begin, std::size_t size);

// Has the kernel provide the pages of a large new array in batches, just before they are filled. Otherwise the
// processor interrupts the program at the first use of each page, which takes longer than filling the page.
class PagesAhead {
public:
    PagesAhead(void* begin, std::size_t size);

    // Call this before the bytes up to `end` are filled.
    void provide(const void* end) {
        if (static_cast<const char*>(end) > m_provided) provideBatch(static_cast<const char*>(end));
    }

    // Returns false if the kernel cannot do this.
    bool canProvide() const { return m_canProvide; }

private:
    void provideBatch(const char* end);

    char* m_provided;
    char* m_end;
    bool m_canProvide = true;
};

struct ReadText {
    std::size_t size = 0;        // the bytes that could be read
    bool hasLargePages = false;  // large pages came more quickly than small ones, to the end
};

// Reads `size` bytes into fresh memory as `fread` does, a large text in large pages. Large pages can take much longer
// than small ones if the kernel must first assemble them or if their memory was never used. So the function measures
// both while it reads, and goes on with small pages if large ones do not pay.
ReadText readFreshText(std::FILE* stream, char* text, std::size_t size);

}  // namespace vexa::vexautilutil
