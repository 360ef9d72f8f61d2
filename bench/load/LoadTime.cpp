// Measures the time to load the library, and the time to load an empty library that needs the same libraries.
//
// Usage: load_time [ROUNDS]
//
// Each load happens in a new child process, so that nothing is loaded yet. The figures are medians. The figure after
// the slash is the ratio to the empty library.
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double secondsToLoad(const char* library) {
    const Clock::time_point start = Clock::now();
    if (dlopen(library, RTLD_NOW | RTLD_LOCAL) == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::abort();
    }
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double secondsOfAChild(const char* library) {
    int channel[2];
    if (pipe(channel) != 0) std::abort();
    if (fork() == 0) {
        const double seconds = secondsToLoad(library);
        _exit(write(channel[1], &seconds, sizeof seconds) == sizeof seconds ? 0 : 1);
    }
    double seconds = 0;
    int status = 0;
    close(channel[1]);
    if (read(channel[0], &seconds, sizeof seconds) != sizeof seconds || wait(&status) < 0 || status != 0) std::abort();
    close(channel[0]);
    return seconds;
}

double median(std::vector<double>& values) {
    std::nth_element(values.begin(), values.begin() + static_cast<long>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
    const long rounds = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 500;
    if (rounds < 1) return 2;
    std::vector<double> empty;
    std::vector<double> library;
    for (long round = 0; round < rounds; ++round) {
        empty.push_back(secondsOfAChild(EMPTY_LIBRARY));
        library.push_back(secondsOfAChild(LIBRARY));
    }
    const double base = median(empty);
    const double own = median(library);
    std::printf("%-16s %8.0f us / %4.2f\n%-16s %8.0f us / %4.2f\n", "empty library", base * 1e6, 1.0, "the library",
                own * 1e6, own / base);
}
