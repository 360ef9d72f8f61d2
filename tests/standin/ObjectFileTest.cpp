// Tests files that cannot be loaded. Each is a copy of an add-on with one change.

#include <elf.h>
#include <gtest/gtest.h>
#include <link.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>

#include "support/TemporaryFolder.h"
#include "vexastandin/Host.h"

namespace vexa::standin {
namespace {

std::string bytesOfAddOn() {
    std::ifstream file(VEXA_TEST_ADDONS "/probe.so", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

template <class Value>
void put(std::string& bytes, std::size_t offset, Value value) {
    std::memcpy(bytes.data() + offset, &value, sizeof(value));
}

ElfW(Ehdr) headerOf(const std::string& bytes) {
    ElfW(Ehdr) header;
    std::memcpy(&header, bytes.data(), sizeof(header));
    return header;
}

std::size_t endOfSegments(const std::string& bytes) {
    const ElfW(Ehdr) header = headerOf(bytes);
    std::size_t end = 0;
    for (std::size_t i = 0; i != header.e_phnum; ++i) {
        ElfW(Phdr) segment;
        std::memcpy(&segment, bytes.data() + header.e_phoff + i * sizeof(segment), sizeof(segment));
        end = std::max<std::size_t>(end, segment.p_offset + segment.p_filesz);
    }
    return end;
}

// "accepted", or the reason without the file's name.
std::string refusalOf(const std::string& path) {
    Host host;
    try {
        host.loadAddOn(path);
    } catch (const LoadError& refusal) {
        return std::string(refusal.what()).substr(path.size() + 2);
    }
    return "accepted";
}

std::string refusalOfBytes(const std::string& bytes) {
    const tests::TemporaryFolder folder;
    return refusalOf(folder.write("changed.so", bytes));
}

std::string refusalOfMachine(unsigned machine) {
    std::string bytes = bytesOfAddOn();
    put(bytes, offsetof(ElfW(Ehdr), e_machine), static_cast<ElfW(Half)>(machine));
    return refusalOfBytes(bytes);
}

std::string nameOfThisMachine() {
    switch (headerOf(bytesOfAddOn()).e_machine) {
        case EM_X86_64: return "x86-64";
        case EM_AARCH64: return "AArch64";
        case EM_S390: return "S/390";
        default: return "";
    }
}

TEST(ObjectFile, IsLoadedWhenItIsWhole) { EXPECT_EQ(refusalOfBytes(bytesOfAddOn()), "accepted"); }

TEST(ObjectFile, OfAnotherMachineIsRefusedByItsName) {
    const std::string here = nameOfThisMachine();
    if (here.empty()) GTEST_SKIP() << "this machine has no name here";
    EXPECT_EQ(refusalOfMachine(EM_RISCV), "it is for RISC-V, but this is " + here);
    EXPECT_EQ(refusalOfMachine(EM_386), "it is for x86, but this is " + here);
    const bool isAarch64 = here == "AArch64";
    EXPECT_EQ(refusalOfMachine(isAarch64 ? EM_X86_64 : EM_AARCH64),
              (isAarch64 ? "it is for x86-64, but this is " : "it is for AArch64, but this is ") + here);
}

TEST(ObjectFile, OfAnUnknownMachineIsRefusedByItsNumber) {
    EXPECT_EQ(refusalOfMachine(4711).find("it is for machine number 4711, but this is "), 0U);
}

TEST(ObjectFile, OfAnotherByteOrderIsReadInIt) {
    std::string bytes = bytesOfAddOn();
    bytes[EI_DATA] = ELFDATA2MSB;
    bytes[offsetof(ElfW(Ehdr), e_machine)] = 0;
    bytes[offsetof(ElfW(Ehdr), e_machine) + 1] = EM_PPC64;
    EXPECT_EQ(refusalOfBytes(bytes).find("it is for PowerPC 64, but this is "), 0U);
}

TEST(ObjectFile, OfAnotherKindOfTheSameMachineSaysWhatIsDifferent) {
    std::string bytes = bytesOfAddOn();
    const bool is64 = bytes[EI_CLASS] == ELFCLASS64;
    bytes[EI_CLASS] = is64 ? ELFCLASS32 : ELFCLASS64;
    const std::string here = nameOfThisMachine();
    if (here.empty() || !is64) GTEST_SKIP() << "this machine has no name here";
    const std::string order = bytes[EI_DATA] == ELFDATA2MSB ? "big-endian" : "little-endian";
    EXPECT_EQ(refusalOfBytes(bytes),
              "it is for " + here + ", 32-bit, " + order + ", but this is " + here + ", 64-bit, " + order);
}

TEST(ObjectFile, OfThisMachineInTheOtherByteOrderSaysTheByteOrder) {
    std::string bytes = bytesOfAddOn();
    const std::string here = nameOfThisMachine();
    ASSERT_FALSE(here.empty()) << "this machine has no name here";
    const bool isBigEndian = bytes[EI_DATA] == ELFDATA2MSB;
    bytes[EI_DATA] = isBigEndian ? ELFDATA2LSB : ELFDATA2MSB;
    constexpr std::size_t kMachine = offsetof(ElfW(Ehdr), e_machine);
    std::swap(bytes[kMachine], bytes[kMachine + 1]);
    EXPECT_EQ(refusalOfBytes(bytes), "it is for " + here + ", 64-bit, " + (isBigEndian ? "little" : "big") +
                                         "-endian, but this is " + here + ", 64-bit, " +
                                         (isBigEndian ? "big" : "little") + "-endian");
}

TEST(ObjectFile, IsRefusedWhereverItIsTruncated) {
    const std::string bytes = bytesOfAddOn();
    const std::size_t size = bytes.size();
    for (const std::size_t left :
         {std::size_t{4}, std::size_t{19}, std::size_t{20}, sizeof(ElfW(Ehdr)) - 1, sizeof(ElfW(Ehdr)),
          sizeof(ElfW(Ehdr)) + 10, std::size_t{4096}, size / 2, size - 1}) {
        EXPECT_EQ(refusalOfBytes(bytes.substr(0, left)), "it is truncated") << left << " of " << size;
    }
    EXPECT_EQ(refusalOfBytes(bytes.substr(0, 3)), "not a shared object");
}

TEST(ObjectFile, WithoutSectionsIsRefusedWhereASegmentIsTruncated) {
    std::string bytes = bytesOfAddOn();
    put(bytes, offsetof(ElfW(Ehdr), e_shoff), ElfW(Off){0});
    put(bytes, offsetof(ElfW(Ehdr), e_shnum), ElfW(Half){0});
    put(bytes, offsetof(ElfW(Ehdr), e_shstrndx), ElfW(Half){0});
    EXPECT_EQ(refusalOfBytes(bytes), "accepted");
    EXPECT_EQ(refusalOfBytes(bytes.substr(0, endOfSegments(bytes))), "accepted");
    EXPECT_EQ(refusalOfBytes(bytes.substr(0, endOfSegments(bytes) - 1)), "it is truncated");
}

TEST(ObjectFile, WithASegmentBeyondAllBoundsIsTruncated) {
    std::string bytes = bytesOfAddOn();
    put(bytes, headerOf(bytes).e_phoff + offsetof(ElfW(Phdr), p_filesz), ~ElfW(Xword){0});
    EXPECT_EQ(refusalOfBytes(bytes), "it is truncated");
}

TEST(ObjectFile, ThatMayNotBeReadIsRefused) {
    const tests::TemporaryFolder folder;
    const std::string path = folder.write("unreadable.so", bytesOfAddOn());
    chmod(path.c_str(), 0);
    chmod(folder.path().c_str(), 0755);
    const uid_t user = geteuid();
    if (user == 0) {  // who may read everything
        ASSERT_EQ(seteuid(65534), 0);
    }
    const std::string refusal = refusalOf(path);
    ASSERT_EQ(seteuid(user), 0);
    EXPECT_EQ(refusal, "it cannot be opened: permission denied");
}

// No process has memory at the address 0, so its memory cannot be read from there.
TEST(ObjectFile, ThatFailsWhenItIsReadIsRefusedWithTheReason) {
    EXPECT_EQ(refusalOf("/proc/self/mem"), "it cannot be read: input/output error");
}

TEST(ObjectFile, ThatNeedsAMissingLibraryIsRefusedWithTheTextOfTheLoader) {
    std::string bytes = bytesOfAddOn();
    const std::string library = "libc.so.6";
    for (auto at = bytes.find(library); at != std::string::npos; at = bytes.find(library, at)) {
        bytes.replace(at, library.size(), "nosuch.so");
    }
    EXPECT_EQ(refusalOfBytes(bytes).find("it cannot be loaded: nosuch.so: "), 0U) << refusalOfBytes(bytes);
}

TEST(ObjectFile, IsRefusedWhileTooManyFilesAreOpen) {
    if (VEXA_IS_SANITIZED) GTEST_SKIP() << "a sanitizer opens a pipe to look at an address";
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const int next = dup(STDERR_FILENO);
    close(next);
    const rlimit none{static_cast<rlim_t>(next), before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const std::string refusal = refusalOf(VEXA_TEST_ADDONS "/probe.so");
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(refusal, "it cannot be opened: too many open files");
}

}  // namespace
}  // namespace vexa::standin
