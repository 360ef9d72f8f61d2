#include "load/Resources.h"

#include <malloc.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace vexa::load {
namespace {

long residentPages() {
    long size = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> size >> resident;
    return resident;
}

long descriptorCount() {
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return std::distance(begin(entries), end(entries));
}

}  // namespace

Resources Resources::now() {
    Resources resources;
    resources.descriptors = descriptorCount();
    malloc_trim(0);
    resources.heapInUse = mallinfo2().uordblks;
    resources.residentKiB = residentPages() * (sysconf(_SC_PAGESIZE) / 1024);
    return resources;
}

bool forgetPeakMemory() {
    malloc_trim(0);
    std::ofstream file("/proc/self/clear_refs");
    file << '5' << std::flush;
    return file.good();
}

long peakMemoryKiB() {
    const std::string wanted = "VmHWM:";
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word && word != wanted) {}
    long peak = 0;
    status >> peak;
    return peak;
}

double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

}  // namespace vexa::load
