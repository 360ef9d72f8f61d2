// Writes the sample data of this add-on: what two hot-wire probes and a pressure tap behind a cylinder could have
// measured. Everything is computed from the constants below and from std::mt19937, whose sequence the language
// standard fixes, so every run writes the same bytes.
//
//     make-wake-probe data/wake-probe.txt

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kRows = 3000;
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
    double operator()() {
        double sum = -6.0;
        for (int i = 0; i < 12; ++i) sum += static_cast<double>(m_engine()) / 4294967296.0;
        return sum;
    }

private:
    std::mt19937 m_engine{20};  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same sequence every time is the point
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

void writeRow(std::FILE* out, int row, Noise& noise) {
    const double time = row / kSampleRate;
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

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: make-wake-probe FILE\n");
        return 2;
    }
    std::FILE* out = std::fopen(argv[1], "wb");
    if (out == nullptr) {
        std::perror(argv[1]);
        return 1;
    }
    writeHeader(out);
    Noise noise;
    for (int row = 0; row < kRows; ++row) writeRow(out, row, noise);
    const bool written = std::ferror(out) == 0;
    if (std::fclose(out) != 0 || !written) {
        std::perror(argv[1]);
        return 1;
    }
    return 0;
}
