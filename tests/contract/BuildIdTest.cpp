#include "contract/BuildId.h"

#include <elf.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace vexa::standin {
namespace {

// A note as an object has it in memory. Its parts are padded to four bytes.
std::string note(const std::string& owner, unsigned type, const std::string& content) {
    const auto padded = [](std::string text) { return text.append((4 - text.size() % 4) % 4, '\0'); };
    ElfW(Nhdr) header{};
    header.n_namesz = static_cast<ElfW(Word)>(owner.size());
    header.n_descsz = static_cast<ElfW(Word)>(content.size());
    header.n_type = type;
    return std::string(reinterpret_cast<const char*>(&header), sizeof header) + padded(owner) + padded(content);
}

const std::string kGnu("GNU\0", 4);
const std::string kStranger("XYZ\0", 4);

// The build id of an object with these segments of notes.
std::string buildIdOfNotes(const std::vector<std::string>& segments) {
    std::vector<ElfW(Phdr)> headers;
    for (const std::string& notes : segments) {
        ElfW(Phdr) header{};
        header.p_type = PT_NOTE;
        header.p_vaddr = reinterpret_cast<ElfW(Addr)>(notes.data());
        header.p_memsz = notes.size();
        headers.push_back(header);
    }
    return buildIdOf(headers.data(), headers.size(), 0);
}

TEST(BuildId, IsWrittenInHexadecimalDigits) {
    EXPECT_EQ(buildIdOfNotes({note(kGnu, NT_GNU_BUILD_ID, "\x01\xab\xff")}), "01abff");
}

TEST(BuildId, ComesAfterOtherNotes) {
    EXPECT_EQ(buildIdOfNotes({note(kGnu, NT_GNU_ABI_TAG, "abcde") + note(kGnu, NT_GNU_BUILD_ID, "\x02")}), "02");
}

TEST(BuildId, OfAnotherOwnerIsNone) { EXPECT_EQ(buildIdOfNotes({note(kStranger, NT_GNU_BUILD_ID, "\x01")}), ""); }

TEST(BuildId, IsTheFirstOne) {
    EXPECT_EQ(buildIdOfNotes({note(kStranger, NT_GNU_BUILD_ID, "\x01"), note(kGnu, NT_GNU_BUILD_ID, "\x02"),
                              note(kGnu, NT_GNU_BUILD_ID, "\x03")}),
              "02");
}

TEST(BuildId, IsNoneInANoteThatIsLongerThanItsSegment) {
    const std::string whole = note(kGnu, NT_GNU_BUILD_ID, "12345678");
    EXPECT_EQ(buildIdOfNotes({whole.substr(0, whole.size() - 4)}), "");
}

TEST(BuildId, IsNoneWithoutNotes) { EXPECT_EQ(buildIdOfNotes({}), ""); }

}  // namespace
}  // namespace vexa::standin
