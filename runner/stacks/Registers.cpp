#include "stacks/Registers.h"

#include <elf.h>
#include <sys/ptrace.h>
#include <sys/uio.h>
#include <sys/user.h>

namespace vexa::runner {
namespace {

#if defined(__x86_64__)

using SystemRegisters = user_regs_struct;

Registers ordered(const SystemRegisters& from) {
    return {{from.rax, from.rdx, from.rcx, from.rbx, from.rsi, from.rdi, from.rbp, from.rsp, from.r8, from.r9, from.r10,
             from.r11, from.r12, from.r13, from.r14, from.r15, from.rip},
            from.rip};
}

#elif defined(__aarch64__)

using SystemRegisters = user_regs_struct;

Registers ordered(const SystemRegisters& from) {
    Registers registers;
    for (std::size_t i = 0; i != Registers::kStackPointer; ++i) registers.values[i] = from.regs[i];
    registers.values[Registers::kStackPointer] = from.sp;
    registers.instruction = from.pc;
    return registers;
}

#endif

}  // namespace

std::optional<Registers> registersOf([[maybe_unused]] pid_t thread) {
#if defined(__x86_64__) || defined(__aarch64__)
    SystemRegisters registers{};
    iovec place = {&registers, sizeof registers};
    if (ptrace(PTRACE_GETREGSET, thread, NT_PRSTATUS, &place) != 0) return std::nullopt;
    return ordered(registers);
#else
    return std::nullopt;
#endif
}

}  // namespace vexa::runner
