#pragma once

#include <cstdint>
#include <vector>

// Splits a text into lines byte by byte. The fast splitter must give the same result. It appends the offset of each
// line to `offsets`. The text must end with a NUL.
inline void splitByteByByte(char* text, std::vector<uint64_t>& offsets) {
    uint64_t at = 0;
    while (text[at] != '\0') {
        offsets.push_back(at);
        if (text[at] == '\n') {
            text[at++] = '\0';
            continue;
        }
        for (; text[at] != '\0'; ++at) {
            if (text[at] == '\r') text[at] = '\0';
            if (text[at] == '\n') {
                text[at++] = '\0';
                break;
            }
        }
    }
}
