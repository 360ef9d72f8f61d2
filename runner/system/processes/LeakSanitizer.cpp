#include "system/processes/LeakSanitizer.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace vexa::runner {
namespace {

constexpr std::string_view kLibraries[] = {"/libasan.so", "/liblsan.so", "/libclang_rt.asan", "/libclang_rt.lsan"};

constexpr std::size_t kBlock = std::size_t{1} << 20;

bool hasLibrary(const std::string& maps) {
    std::ifstream in(maps);
    for (std::string line; std::getline(in, line);) {
        for (const std::string_view library : kLibraries) {
            if (line.find(library) != std::string::npos) return true;
        }
    }
    return false;
}

// A sanitizer that is linked into a program has no symbols if the program is stripped, but it always has its messages.
// The text is made here, so that it is not in this program.
bool hasMessage(const std::string& program) {
    const std::string message = std::string("LeakSanitizer") + " has encountered a fatal error";
    std::ifstream in(program, std::ios::binary);
    std::vector<char> block(kBlock);
    std::string text;  // the block, after the end of the last one, in which the message may start
    while (in.read(block.data(), kBlock), in.gcount() != 0) {
        text.append(block.data(), static_cast<std::size_t>(in.gcount()));
        if (text.find(message) != std::string::npos) return true;
        text.erase(0, text.size() - std::min(text.size(), message.size()));
    }
    return false;
}

}  // namespace

bool hasLeakSanitizer() { return dlsym(RTLD_DEFAULT, "__lsan_do_leak_check") != nullptr; }

bool hasLeakSanitizer(pid_t process) {
    const std::string folder = "/proc/" + std::to_string(process);
    return hasLibrary(folder + "/maps") || hasMessage(folder + "/exe");
}

}  // namespace vexa::runner
