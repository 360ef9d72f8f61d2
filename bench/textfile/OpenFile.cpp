// Compares AsciiFile with hand-written code: open a text file, then read all its lines.
//
// Usage: text_file_open [--size MIB] [--rounds N] [--growth | --pages] [--json FILE]
//
// --growth opens files of 1 to 1000 MiB. --pages opens files of 64 MiB, with large pages if the kernel has them, and
// without.
//
// Each measurement runs in its own child process, so that no subject gets memory that another subject has used. The
// figures are medians. The figure after the slash is the ratio to the first row of its block. The JSON file gets the
// figures in the format of the other benchmarks.
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/library/textfile/ByteLoopSplit.h"
#include "vexautilutil/AsciiFile.h"

namespace {

// Measures processor time. The file is in memory, so wall time would add only the waiting for other programs.
struct Clock {
    using duration = std::chrono::nanoseconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<Clock>;

    static time_point now() {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return time_point(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
    }
};

struct Measured {
    double openSeconds = 0;
    double linesSeconds = 0;
    double checksum = 0;  // of the lines, so that the compiler cannot remove the loop
    double peakMiB = 0;
};

// Opens the file, calls `opened`, and then reads all lines.
using Subject = std::function<double(const std::string& path, const std::function<void()>& opened)>;

struct NamedSubject {
    const char* title;
    const char* name;
    Subject run;
};

double firstByte(const char* line) { return static_cast<unsigned char>(*line); }

struct Buffer {
    std::unique_ptr<char[]> text;
    std::size_t size = 0;
};

Buffer readInOne(const std::string& path) {
    FILE* const file = std::fopen(path.c_str(), "rb");
    std::fseek(file, 0, SEEK_END);
    Buffer buffer;
    buffer.size = static_cast<std::size_t>(std::ftell(file));
    std::rewind(file);
    buffer.text.reset(new char[buffer.size + 1]);
    if (std::fread(buffer.text.get(), 1, buffer.size, file) != buffer.size) std::abort();
    buffer.text[buffer.size] = '\0';
    std::fclose(file);
    return buffer;
}

double fread(const std::string& path, const std::function<void()>& opened) {
    const Buffer buffer = readInOne(path);
    opened();
    double sum = 0;
    for (const char* line = buffer.text.get(); line != nullptr && *line != '\0';) {
        sum += firstByte(line);
        line = std::strchr(line, '\n');
        if (line != nullptr) ++line;
    }
    return sum;
}

double byteLoop(const std::string& path, const std::function<void()>& opened) {
    const Buffer buffer = readInOne(path);
    std::vector<uint64_t> offsets;
    splitByteByByte(buffer.text.get(), offsets);
    opened();
    double sum = 0;
    for (const uint64_t offset : offsets) sum += firstByte(buffer.text.get() + offset);
    return sum;
}

double getline(const std::string& path, const std::function<void()>& opened) {
    std::vector<std::string> lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    opened();
    double sum = 0;
    for (const std::string& line : lines) {
        const std::string copy = line;
        sum += firstByte(copy.c_str());
    }
    return sum;
}

double getlineIntoOne(const std::string& path, const std::function<void()>& opened) {
    std::ifstream file(path);
    opened();
    double sum = 0;
    for (std::string line; std::getline(file, line);) sum += firstByte(line.c_str());
    return sum;
}

double readRawLine(const std::string& path, const std::function<void()>& opened) {
    vexa::vexautilutil::AsciiFile file;
    if (!file.open(path)) std::abort();
    opened();
    double sum = 0;
    while (!file.isEOF()) sum += firstByte(file.readRawLine());
    return sum;
}

double readLine(const std::string& path, const std::function<void()>& opened) {
    vexa::vexautilutil::AsciiFile file;
    if (!file.open(path)) std::abort();
    opened();
    double sum = 0;
    while (!file.isEOF()) sum += firstByte(file.readLine().c_str());
    return sum;
}

const std::vector<NamedSubject> kSubjects = {
    {"fopen + fread, then strchr", "fread", fread},
    {"AsciiFile, readRawLine", "ours", readRawLine},
    {"AsciiFile, readLine", "readLine", readLine},
    {"byte loop, then offsets", "byte_loop", byteLoop},
    {"std::getline into strings", "getline_into_strings", getline},
    {"std::getline into one string", "getline_into_one", getlineIntoOne},
};

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

Measured measureHere(const Subject& subject, const std::string& path) {
    Measured measured;
    const Clock::time_point start = Clock::now();
    Clock::time_point openedAt;
    measured.checksum = subject(path, [&] {
        measured.openSeconds = secondsSince(start);
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        measured.peakMiB = static_cast<double>(usage.ru_maxrss) / 1024;
        openedAt = Clock::now();
    });
    measured.linesSeconds = secondsSince(openedAt);  // includes freeing the text
    return measured;
}

enum class Pages { AsTheKernelHas, Small };

Measured measure(const Subject& subject, const std::string& path, Pages pages) {
    int channel[2];
    if (pipe(channel) != 0) std::abort();
    if (fork() == 0) {
        if (pages == Pages::Small && prctl(PR_SET_THP_DISABLE, 1, 0, 0, 0) != 0) std::abort();
        const Measured measured = measureHere(subject, path);
        _exit(write(channel[1], &measured, sizeof measured) == sizeof measured ? 0 : 1);
    }
    Measured measured;
    int status = 0;
    if (read(channel[0], &measured, sizeof measured) != sizeof measured || wait(&status) < 0 || status != 0)
        std::abort();
    close(channel[0]);
    close(channel[1]);
    return measured;
}

template <class Member>
double median(const std::vector<Measured>& all, Member member) {
    std::vector<double> values;
    for (const Measured& one : all) values.push_back(one.*member);
    std::nth_element(values.begin(), values.begin() + static_cast<long>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

struct TestFile {
    const char* title;
    const char* name;
    std::string line;  // every line; empty for lines of different numbers
    const char* lineEnd;
};

std::string longLine() {
    std::string line;
    while (line.size() < 10 * 1024) line += "0.12345 ";
    return line;
}

std::vector<TestFile> testFiles() {
    return {{"short lines", "short", "", "\n"},
            {"short lines, CR LF", "crlf", "", "\r\n"},
            {"10 KiB lines", "long", longLine(), "\n"}};
}

// Creates a file of at least the given size. The destructor removes it.
class TemporaryFile {
public:
    TemporaryFile(const TestFile& kind, std::size_t size) : m_path("vexa-bench-text-file.tmp") {
        std::string block;
        for (unsigned i = 0; block.size() < (std::size_t{1} << 20); ++i) {
            block += kind.line.empty() ? std::to_string(i) + " " + std::to_string(i * 2654435761U % 1000003U) + " 0." +
                                             std::to_string(i * 40503U % 997U)
                                       : kind.line;
            block += kind.lineEnd;
        }
        FILE* const file = std::fopen(m_path.c_str(), "wb");
        if (file == nullptr) std::abort();
        for (std::size_t written = 0; written < size; written += block.size()) {
            if (std::fwrite(block.data(), 1, block.size(), file) != block.size()) std::abort();
        }
        if (std::fclose(file) != 0) std::abort();
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() { std::remove(m_path.c_str()); }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

std::vector<std::vector<Measured>> measureFirst(std::size_t subjects, const std::string& path, int rounds,
                                                Pages pages = Pages::AsTheKernelHas) {
    std::vector<std::vector<Measured>> measured(subjects);
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < subjects; ++i) {
            measured[i].push_back(measure(kSubjects[i].run, path, pages));
            if (measured[i].back().checksum != measured[0].back().checksum) std::abort();
        }
    }
    return measured;
}

// Writes the figures to a file, in the format of the other benchmarks. Without a file it drops them.
class Figures {
public:
    explicit Figures(const std::string& path) : m_file(path.empty() ? nullptr : std::fopen(path.c_str(), "w")) {
        print("{\"benchmarks\": [");
    }
    Figures(const Figures&) = delete;
    Figures& operator=(const Figures&) = delete;
    ~Figures() {
        print("\n]}\n");
        if (m_file != nullptr) std::fclose(m_file);
    }

    void add(const std::string& row, const char* subject, std::size_t times, double value) {
        print((m_isFirst ? "\n{\"name\": \"" : ",\n{\"name\": \"") + row + '/' + subject + '/' + std::to_string(times) +
              "\", \"value\": " + std::to_string(value) + '}');
        m_isFirst = false;
    }

private:
    void print(const std::string& text) {
        if (m_file != nullptr) std::fputs(text.c_str(), m_file);
    }

    FILE* m_file;
    bool m_isFirst = true;
};

constexpr double kNanoseconds = 1e9;
constexpr double kBytesOfMiB = 1 << 20;

void compare(std::size_t mib, int rounds, Figures& figures) {
    for (const TestFile& kind : testFiles()) {
        const TemporaryFile file(kind, mib << 20);
        const auto measured = measureFirst(kSubjects.size(), file.path(), rounds);
        std::printf("\n%s, %zu MiB\n%-28s %18s %18s %10s\n", kind.title, mib, "", "open", "all lines", "peak");
        for (std::size_t i = 0; i < kSubjects.size(); ++i) {
            const double open = median(measured[i], &Measured::openSeconds);
            const double lines = median(measured[i], &Measured::linesSeconds);
            const std::string ofKind = std::string("-") + kind.name;
            const double peak = median(measured[i], &Measured::peakMiB);
            figures.add("open" + ofKind, kSubjects[i].name, 1, open * kNanoseconds);
            figures.add("lines" + ofKind, kSubjects[i].name, 1, (open + lines) * kNanoseconds);
            figures.add("open-memory" + ofKind, kSubjects[i].name, 1, peak * kBytesOfMiB);
            std::printf("%-28s %8.0f ms / %4.2f %8.0f ms / %4.2f %6.0f MiB\n", kSubjects[i].title, open * 1e3,
                        open / median(measured[0], &Measured::openSeconds), lines * 1e3,
                        lines / median(measured[0], &Measured::linesSeconds), peak);
        }
    }
}

void showGrowth(int rounds, Figures& figures) {
    std::printf("\nAsciiFile::open, short lines\n%10s %12s %14s %12s\n", "size", "open", "per MiB", "to fread");
    for (std::size_t mib = 1; mib <= 1000; mib *= 10) {
        const TemporaryFile file(testFiles()[0], mib << 20);
        const auto measured = measureFirst(2, file.path(), rounds);
        const double open = median(measured[1], &Measured::openSeconds);
        const double fread = median(measured[0], &Measured::openSeconds);
        figures.add("open-growth", "ours", mib, open * kNanoseconds);
        figures.add("open-growth", "fread", mib, fread * kNanoseconds);
        std::printf("%6zu MiB %9.1f ms %11.3f ms %12.2f\n", mib, open * 1e3, open * 1e3 / static_cast<double>(mib),
                    open / fread);
    }
}

void comparePages(int rounds, Figures& figures) {
    constexpr std::size_t kMiB = 64;
    std::printf("\nAsciiFile::open, 64 MiB\n%-28s %12s %12s\n", "", "large pages", "small pages");
    for (const TestFile& kind : testFiles()) {
        const TemporaryFile file(kind, kMiB << 20);
        double ratios[2];
        for (const Pages pages : {Pages::AsTheKernelHas, Pages::Small}) {
            const auto measured = measureFirst(2, file.path(), rounds, pages);
            const double fread = median(measured[0], &Measured::openSeconds);
            const double open = median(measured[1], &Measured::openSeconds);
            const std::string row = std::string(pages == Pages::Small ? "open-64-small-" : "open-64-") + kind.name;
            figures.add(row, "fread", 1, fread * kNanoseconds);
            figures.add(row, "ours", 1, open * kNanoseconds);
            ratios[static_cast<int>(pages)] = open / fread;
        }
        std::printf("%-28s %12.2f %12.2f\n", kind.title, ratios[0], ratios[1]);
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::size_t mib = 256;
    int rounds = 7;
    bool growth = false;
    bool pages = false;
    std::string json;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--growth") growth = true;
        if (argument == "--pages") pages = true;
        if (argument == "--json" && i + 1 < argc) json = argv[++i];
        if (argument == "--size" && i + 1 < argc) mib = std::strtoul(argv[++i], nullptr, 10);
        if (argument == "--rounds" && i + 1 < argc) rounds = std::atoi(argv[++i]);
    }
    Figures figures(json);
    if (growth) return showGrowth(rounds, figures), 0;
    if (pages) return comparePages(rounds, figures), 0;
    compare(mib, rounds, figures);
}
