#include "stacks/Unwinder.h"

#include <elfutils/libdwfl.h>
#include <libelf.h>
#include <sys/auxv.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string_view>

#include "stacks/DwflSession.h"
#include "stacks/MappedObjects.h"

namespace vexa::runner {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kMostFrames = 64;
constexpr std::chrono::milliseconds kTimeToCount{300};

// The object that the system adds to each process has no file. This process has the same one.
Elf* systemObject() {
    const unsigned long address = getauxval(AT_SYSINFO_EHDR);
    if (address == 0) return nullptr;
    char* const image = reinterpret_cast<char*>(address);
    Elf64_Ehdr head;
    std::memcpy(&head, image, sizeof head);
    const std::size_t size = head.e_shoff + std::size_t{head.e_shnum} * head.e_shentsize;
    Elf* const object = elf_memory(image, size);
    return object;
}

int findObject(Dwfl_Module* module, void** data, const char* name, Dwarf_Addr base, char** file, Elf** elf) {
    constexpr std::string_view kSystemObject = "[vdso";
    if (std::string_view(name).substr(0, kSystemObject.size()) != kSystemObject) {
        return dwfl_linux_proc_find_elf(module, data, name, base, file, elf);
    }
    *elf = systemObject();
    return -1;
}

constexpr Dwfl_Callbacks kCallbacks = {findObject, dwfl_standard_find_debuginfo, nullptr, &DwflSession::debugPath};

}  // namespace

class Unwinder::Session {
public:
    Session(pid_t process, const Descriptor& memory) : m_memory(memory), m_session(dwfl_begin(&kCallbacks)) {
        elf_version(EV_CURRENT);
        if (m_session == nullptr || !reportMappedObjects(m_session.get(), process)) return;
        dwfl_report_end(m_session.get(), nullptr, nullptr);
        dwfl_attach_state(m_session.get(), nullptr, process, &kThreads, this);
    }

    CodePlaces placesOf(const Registers& registers) {
        m_found = {};
        m_registers = registers;
        m_end = Clock::now() + kTimeToCount;
        if (objectAt(registers.instruction) == nullptr) leaveWildCall();
        dwfl_getthread_frames(m_session.get(), kThread, takeFrame, this);
        // Without a description of the code the frame itself is all that is known.
        if (m_found.places.empty()) add(registers.instruction);
        return m_found;
    }

private:
    static constexpr pid_t kThread = 1;  // stands for the thread whose registers are here

    Dwfl_Module* objectAt(std::uint64_t address) const { return dwfl_addrmodule(m_session.get(), address); }

    // A call through a bad pointer has left the code. The return address is where the call put it.
    void leaveWildCall() {
        std::uint64_t& stack = m_registers.values[Registers::kStackPointer];
        add(m_registers.instruction);
#if defined(__x86_64__)
        Dwarf_Word caller = 0;
        if (!read(stack, caller)) return;
        stack += sizeof caller;
        m_registers.values[Registers::kCount - 1] = caller;
#else
        constexpr std::size_t kReturnAddress = 30;
        const std::uint64_t caller = m_registers.values[kReturnAddress];
#endif
        m_registers.instruction = caller;
        m_isReturn = true;
    }

    bool read(std::uint64_t address, Dwarf_Word& value) const {
        const auto at = static_cast<off_t>(address);
        return pread(m_memory.get(), &value, sizeof value, at) == static_cast<ssize_t>(sizeof value);
    }

    void add(std::uint64_t address) {
        Dwfl_Module* const module = objectAt(address);
        Dwarf_Addr bias = 0;
        const char* file = nullptr;
        if (module == nullptr || dwfl_module_getelf(module, &bias) == nullptr) {
            m_found.places.push_back({"", address});
            return;
        }
        const char* const name = dwfl_module_info(module, nullptr, nullptr, nullptr, nullptr, nullptr, &file, nullptr);
        m_found.places.push_back({file != nullptr ? file : name, address - bias});
    }

    int take(Dwfl_Frame* frame) {
        if (m_found.places.size() == kMostFrames) {
            ++m_found.leftOut;
            m_found.isCounted = Clock::now() < m_end;
            return m_found.isCounted ? DWARF_CB_OK : DWARF_CB_ABORT;
        }
        Dwarf_Addr address = 0;
        bool isInterrupted = false;  // otherwise the address is the one after a call
        if (!dwfl_frame_pc(frame, &address, &isInterrupted)) return DWARF_CB_ABORT;
        if (std::exchange(m_isReturn, false)) isInterrupted = false;
        add(isInterrupted ? address : address - 1);
        return DWARF_CB_OK;
    }

    static int takeFrame(Dwfl_Frame* frame, void* session) { return static_cast<Session*>(session)->take(frame); }

    static pid_t noNextThread(Dwfl*, void*, void**) { return 0; }
    static bool findThread(Dwfl*, pid_t, void* session, void** thread) {
        *thread = session;
        return true;
    }
    static bool readMemory(Dwfl*, Dwarf_Addr address, Dwarf_Word* value, void* session) {
        return static_cast<Session*>(session)->read(address, *value);
    }
    static bool setRegisters(Dwfl_Thread* thread, void* session) {
        const Registers& registers = static_cast<Session*>(session)->m_registers;
        dwfl_thread_state_register_pc(thread, registers.instruction);
        return dwfl_thread_state_registers(thread, 0, Registers::kCount, registers.values.data());
    }

    static constexpr Dwfl_Thread_Callbacks kThreads = {noNextThread, findThread, readMemory,
                                                       setRegisters, nullptr,    nullptr};

    const Descriptor& m_memory;
    DwflSession::Owner m_session;
    Registers m_registers;
    CodePlaces m_found;
    Clock::time_point m_end;
    bool m_isReturn = false;
};

Unwinder::Unwinder(pid_t process, const Descriptor& memory) : m_session(std::make_unique<Session>(process, memory)) {}

Unwinder::~Unwinder() = default;

CodePlaces Unwinder::placesOf(const Registers& registers) { return m_session->placesOf(registers); }

}  // namespace vexa::runner
