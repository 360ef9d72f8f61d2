// Writes the sample data of this add-on: what two hot-wire probes and a pressure tap behind a cylinder could have
// measured. Everything is computed from the constants below and from std::mt19937, whose sequence the language
// standard fixes, so every run writes the same bytes.
//
//     make-wake-probe data/wake-probe.txt
//     make-wake-probe build/large.txt 200000        # more rows; a further number is the seed of the noise

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr long kDefaultRows = 3000;
constexpr long kDefaultSeed = 20;
constexpr double kSampleRate = 2000.0;                        // Hz
constexpr double kSpeed = 8.0;                                // m/s, of the free stream
constexpr double kDiameter = 0.02;                            // m, of the cylinder
constexpr double kStrouhal = 0.196;                           // shedding frequency * diameter / speed
constexpr double kShedding = kStrouhal * kSpeed / kDiameter;  // 78.4 Hz
constexpr double kStartUp = 0.02;                             // s, in which the shedding sets in
constexpr double kMains = 50.0;                               // Hz, hum picked up by the reference probe
constexpr double kDrift = 40.0;                               // Pa/s, of the pressure while the tunnel warms up

// About normally distributed, with standard deviation 1: the sum of twelve uniform numbers, less their mean.
class Noise {
public:
    explicit Noise(long seed) : m_engine(static_cast<std::mt19937::result_type>(seed)) {}

    double operator()() {
        double sum = -6.0;
        for (int i = 0; i < 12; ++i) sum += static_cast<double>(m_engine()) / 4294967296.0;
        return sum;
    }

private:
    std::mt19937 m_engine;
};

double wave(double frequency, double time, double phase) { return std::sin(2.0 * kPi * frequency * time + phase); }

void writeHeader(std::FILE* out) {
    std::fprintf(out, "# Wake of a cylinder of %g m in a stream of %g m/s, sampled at %g Hz\n", kDiameter, kSpeed,
                 kSampleRate);
    std::fprintf(out, "# 1 time [s]\n");
    std::fprintf(out, "# 2 velocity in the wake, along the stream [m/s]\n");
    std::fprintf(out, "# 3 velocity in the wake, across the stream [m/s]\n");
    std::fprintf(out, "# 4 pressure at the wall [Pa]\n");
    std::fprintf(out, "# 5 velocity of the undisturbed stream [m/s]\n");
}

void writeRow(std::FILE* out, long row, Noise& noise) {
    const double time = static_cast<double>(row) / kSampleRate;
    const double shed = 1.0 - std::exp(-time / kStartUp);
    const double along = 5.9 + shed * (0.45 * wave(2.0 * kShedding, time, 0.3) + 0.15 * wave(kShedding, time, 0.0));
    const double across = 0.05 + shed * 1.4 * wave(kShedding, time, 0.0);
    const double pressure = -21.0 + kDrift * time + shed * 6.5 * wave(kShedding, time, 0.7);
    const double stream = kSpeed + 0.03 * wave(kMains, time, 0.0);
    const double u = along + 0.2 * noise();
    const double v = across + 0.2 * noise();
    const double p = pressure + 1.5 * noise();
    const double reference = stream + 0.05 * noise();
    std::fprintf(out, "%.4f %.4f %.4f %.3f %.4f\n", time, u, v, p, reference);
}

// The argument at \p index, or \p missing when there is none. What is no number above 0 gives 0.
long numberAt(int index, int argc, char** argv, long missing) {
    if (index >= argc) return missing;
    char* end = nullptr;
    const long number = std::strtol(argv[index], &end, 10);
    return *end == '\0' && number > 0 ? number : 0;
}

}  // namespace

int main(int argc, char** argv) {
    const long rows = numberAt(2, argc, argv, kDefaultRows);
    const long seed = numberAt(3, argc, argv, kDefaultSeed);
    if (argc < 2 || argc > 4 || rows == 0 || seed == 0) {
        std::fprintf(stderr, "usage: make-wake-probe FILE [ROWS [SEED]]\n");
        return 2;
    }
    std::FILE* out = std::fopen(argv[1], "wb");
    if (out == nullptr) {
        std::perror(argv[1]);
        return 1;
    }
    writeHeader(out);
    Noise noise(seed);
    for (long row = 0; row < rows; ++row) writeRow(out, row, noise);
    const bool written = std::ferror(out) == 0;
    if (std::fclose(out) != 0 || !written) {
        std::perror(argv[1]);
        return 1;
    }
    return 0;
}
