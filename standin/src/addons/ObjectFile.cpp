#include "addons/ObjectFile.h"

#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <system_error>

// The header of the shared object that holds this code. It says which machine this is.
extern "C" __attribute__((visibility("hidden"))) const ElfW(Ehdr) __ehdr_start;  // NOLINT: the linker's name

namespace vexa::standin {
namespace {

constexpr char kNoObject[] = "not a shared object";
constexpr char kTruncated[] = "it is truncated";

class ReadFile {
public:
    explicit ReadFile(const std::string& path) : m_descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ReadFile(const ReadFile&) = delete;
    ReadFile& operator=(const ReadFile&) = delete;
    ~ReadFile() {
        if (isOpen()) close(m_descriptor);
    }

    bool isOpen() const { return m_descriptor >= 0; }

    std::uint64_t size() const {
        struct stat status {};
        return fstat(m_descriptor, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
    }

    // Returns the bytes at `offset`; fewer if the file ends earlier.
    // Throws std::system_error if the file cannot be read.
    std::string bytes(std::uint64_t offset, std::size_t count) const {
        std::string bytes(count, '\0');
        const ssize_t got = pread(m_descriptor, bytes.data(), count, static_cast<off_t>(offset));
        if (got < 0) throw std::system_error(errno, std::generic_category());
        bytes.resize(static_cast<std::size_t>(got));
        return bytes;
    }

private:
    int m_descriptor;
};

// The system's text, in lower case for the middle of a sentence.
std::string textOf(int error) {
    std::string text = std::generic_category().message(error);  // never empty
    text.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(text.front())));
    return text;
}

// The machine that the code of a file is for.
struct Machine {
    unsigned char fileClass;
    unsigned char byteOrder;
    unsigned number;
};

bool operator==(const Machine& left, const Machine& right) {
    return left.fileClass == right.fileClass && left.byteOrder == right.byteOrder && left.number == right.number;
}

constexpr std::size_t kMachineEnd = EI_NIDENT + 4;

// The machine's number has the same place and size in every such file, and the byte order of the file.
Machine machineOf(const unsigned char* header) {
    const unsigned first = header[kMachineEnd - 2];
    const unsigned second = header[kMachineEnd - 1];
    const bool isBigEndian = header[EI_DATA] == ELFDATA2MSB;
    return {header[EI_CLASS], header[EI_DATA], isBigEndian ? first << 8 | second : second << 8 | first};
}

std::string nameOf(unsigned machine) {
    struct Name {
        unsigned machine;
        const char* name;
    };
    constexpr Name kNames[] = {
        {EM_386, "x86"},          {EM_X86_64, "x86-64"},       {EM_ARM, "ARM"},
        {EM_AARCH64, "AArch64"},  {EM_PPC, "PowerPC"},         {EM_PPC64, "PowerPC 64"},
        {EM_RISCV, "RISC-V"},     {EM_S390, "S/390"},          {EM_MIPS, "MIPS"},
        {EM_SPARCV9, "SPARC V9"}, {EM_LOONGARCH, "LoongArch"}, {EM_IA_64, "Itanium"},
    };
    for (const Name& known : kNames) {
        if (known.machine == machine) return known.name;
    }
    return "machine number " + std::to_string(machine);
}

// Machines with the same name can differ in size and byte order.
std::string fullNameOf(const Machine& machine) {
    return nameOf(machine.number) + (machine.fileClass == ELFCLASS32 ? ", 32-bit" : ", 64-bit") +
           (machine.byteOrder == ELFDATA2MSB ? ", big-endian" : ", little-endian");
}

std::string whyOtherMachine(const Machine& its, const Machine& here) {
    if (its == here) return "";
    const bool isOfOtherName = its.number != here.number;
    return "it is for " + (isOfOtherName ? nameOf(its.number) : fullNameOf(its)) + ", but this is " +
           (isOfOtherName ? nameOf(here.number) : fullNameOf(here));
}

bool isWithin(std::uint64_t whole, std::uint64_t offset, std::uint64_t length) {
    return offset <= whole && length <= whole - offset;
}

// Returns true if a file for this machine is cut off. The table of sections comes last: if it is complete, the sections
// are, too.
bool isTruncated(const ReadFile& file) {
    const std::uint64_t size = file.size();
    ElfW(Ehdr) header;
    const std::string start = file.bytes(0, sizeof(header));
    if (start.size() < sizeof(header)) return true;
    std::memcpy(&header, start.data(), sizeof(header));
    const std::size_t segmentsLength = std::size_t{header.e_phnum} * sizeof(ElfW(Phdr));
    const std::size_t sectionsLength = std::size_t{header.e_shnum} * sizeof(ElfW(Shdr));
    if (!isWithin(size, header.e_phoff, segmentsLength) || !isWithin(size, header.e_shoff, sectionsLength)) return true;
    const std::string table = file.bytes(header.e_phoff, segmentsLength);
    for (std::size_t at = 0; at + sizeof(ElfW(Phdr)) <= table.size(); at += sizeof(ElfW(Phdr))) {
        ElfW(Phdr) segment;
        std::memcpy(&segment, table.data() + at, sizeof(segment));
        if (!isWithin(size, segment.p_offset, segment.p_filesz)) return true;
    }
    return false;
}

std::string whyNotLoadable(const ReadFile& file) {
    const std::string start = file.bytes(0, kMachineEnd);
    if (start.compare(0, SELFMAG, ELFMAG) != 0) return kNoObject;
    if (start.size() < kMachineEnd) return kTruncated;
    const auto bytesOf = [](const void* header) { return static_cast<const unsigned char*>(header); };
    std::string reason = whyOtherMachine(machineOf(bytesOf(start.data())), machineOf(bytesOf(&__ehdr_start)));
    if (!reason.empty()) return reason;
    return isTruncated(file) ? kTruncated : "";
}

}  // namespace

std::string whyNotLoadable(const std::string& path) {
    const ReadFile file(path);
    if (!file.isOpen()) return "it cannot be opened: " + textOf(errno);
    try {
        return whyNotLoadable(file);
    } catch (const std::system_error& error) {
        return "it cannot be read: " + textOf(error.code().value());
    }
}

}  // namespace vexa::standin
