#include "ProbeProcessor.h"

#include <filesystem>
#include <utility>

#include "Output.h"
#include "ProbeError.h"
#include "Report.h"
#include "Statistics.h"

namespace probestats {
namespace {

using vexa::toolbox::Set;

constexpr const char* kNothingLoaded = "No data: LOAD comes first";

RowWindow allRowsOf(const ProbeData& data) { return {1, data.rowCount(), 1}; }

void requireColumns(const Set& wanted, const ProbeData& data) {
    const Set loaded = data.columnNumbers();
    // A set can name more columns than there is time to walk through: only its runs are looked at.
    Set missing = wanted;
    for (const Set::Range& range : loaded.ranges()) missing.erase(range.first, range.last);
    if (missing.isEmpty()) return;
    throw ProbeError("COLUMNS asks for " + std::to_string(missing.ranges().front().first) + ", but loaded are " +
                     loaded.toString());
}

void requireNotTheData(const std::string& fileName, const ProbeData& data) {
    std::error_code notThere;
    if (std::filesystem::equivalent(fileName, data.fileName, notThere)) {
        throw ProbeError("FILE is the file that the data came from: " + fileName);
    }
}

// What SUMMARIZE asks of the spectrum.
struct SpectrumRequest {
    double sampleRate;
    Baseline baseline;
    double minFrequency;
};

SpectrumRequest spectrumRequest(const ProbeData& data, const RowWindow& window, bool detrend, double minFrequency) {
    if (!data.sampleRate) throw ProbeError("SPECTRUM needs a sample rate: LOAD with SAMPLERATE or TIMECOLUMN");
    if (static_cast<std::size_t>(window.count()) < kMinSpectrumValues) {
        throw ProbeError("SPECTRUM needs " + std::to_string(kMinSpectrumValues) + " rows or more, but the window has " +
                         std::to_string(window.count()));
    }
    const double sampleRate = *data.sampleRate / window.stride;
    if (minFrequency < 0.0) throw ProbeError("MINFREQUENCY must be 0 or more");
    if (minFrequency > sampleRate / 2.0) throw ProbeError("MINFREQUENCY must be at most half the sample rate");
    return {sampleRate, detrend ? Baseline::Line : Baseline::Mean, minFrequency};
}

std::vector<SummaryRow> summaryRows(const ProbeData& data, const RowWindow& window, const Set& columns,
                                    const std::optional<SpectrumRequest>& spectrum) {
    std::vector<SummaryRow> rows;
    for (const ProbeColumn& column : data.columns) {
        if (!columns.contains(column.number)) continue;
        const std::vector<double> values = valuesIn(window, column);
        SummaryRow row{column.number, summarize(values), std::nullopt};
        if (spectrum) {
            row.frequency = dominantFrequency(values, spectrum->sampleRate, spectrum->baseline, spectrum->minFrequency);
        }
        rows.push_back(row);
    }
    return rows;
}

}  // namespace

bool ProbeProcessor::runCommand(const std::string& word) {
    try {
        if (word == "LOAD") return load();
        if (word == "WINDOW") return window();
        if (word == "SUMMARIZE") return summarize();
        return refuse((word.empty() ? "Missing command" : "Unknown command: " + word) +
                      "; known are LOAD, WINDOW, SUMMARIZE");
    } catch (const ProbeError& failure) {
        return refuse(failure.what());
    }
}

bool ProbeProcessor::load() {
    std::optional<std::string> file;
    std::optional<Set> columns;
    std::optional<int64_t> skipRows;
    std::optional<double> sampleRate;
    std::optional<int32_t> timeColumn;
    if (!readOptions("LOAD", {{"FILE", &file},
                              {"COLUMNS", &columns},
                              {"SKIPROWS", &skipRows},
                              {"SAMPLERATE", &sampleRate},
                              {"TIMECOLUMN", &timeColumn}})) {
        return false;
    }
    if (!file) return refuse("LOAD needs the option FILE");
    if (skipRows.value_or(0) < 0) return refuse("SKIPROWS must be 0 or more");
    if (sampleRate.value_or(1.0) <= 0.0) return refuse("SAMPLERATE must be above 0");
    if (sampleRate && timeColumn) return refuse("SAMPLERATE and TIMECOLUMN exclude each other");

    ProbeData data = readProbeFile({*file, columns, skipRows.value_or(0), timeColumn});
    if (sampleRate) data.sampleRate = sampleRate;
    writeToScreen(loadReport(data));
    if (!record()) return false;
    m_window = allRowsOf(data);
    m_data = std::move(data);
    return true;
}

bool ProbeProcessor::window() {
    std::optional<int64_t> first;
    std::optional<int64_t> last;
    std::optional<int32_t> stride;
    if (!readOptions("WINDOW", {{"FIRST", &first}, {"LAST", &last}, {"STRIDE", &stride}})) return false;
    if (!m_data) return refuse(kNothingLoaded);

    const int64_t rows = m_data->rowCount();
    const RowWindow window{first.value_or(1), last.value_or(rows), stride.value_or(1)};
    if (window.first < 1) return refuse("FIRST must be 1 or more");
    if (window.stride < 1) return refuse("STRIDE must be 1 or more");
    if (window.last > rows) {
        return refuse("LAST is " + std::to_string(window.last) + ", but there are " + std::to_string(rows) + " rows");
    }
    if (window.count() < kMinRows) {
        return refuse("FIRST, LAST and STRIDE leave " + std::to_string(window.count()) + " rows, but " +
                      std::to_string(kMinRows) + " are needed");
    }
    writeToScreen(windowReport(window));
    if (!record()) return false;
    m_window = window;
    return true;
}

bool ProbeProcessor::summarize() {
    std::optional<Set> columns;
    std::optional<std::string> file;
    std::optional<bool> spectrum;
    std::optional<bool> detrend;
    std::optional<double> minFrequency;
    if (!readOptions("SUMMARIZE", {{"COLUMNS", &columns},
                                   {"FILE", &file},
                                   {"SPECTRUM", &spectrum},
                                   {"DETREND", &detrend},
                                   {"MINFREQUENCY", &minFrequency}})) {
        return false;
    }
    if (!m_data) return refuse(kNothingLoaded);
    const bool withSpectrum = spectrum.value_or(false);
    if (!withSpectrum && (detrend || minFrequency)) return refuse("DETREND and MINFREQUENCY need SPECTRUM = TRUE");
    if (columns) requireColumns(*columns, *m_data);
    if (file) requireNotTheData(*file, *m_data);

    std::optional<SpectrumRequest> request;
    if (withSpectrum) {
        request = spectrumRequest(*m_data, m_window, detrend.value_or(false), minFrequency.value_or(0.0));
    }
    const std::string report = summaryReport(
        *m_data, m_window, summaryRows(*m_data, m_window, columns.value_or(m_data->columnNumbers()), request),
        withSpectrum ? FrequencyColumn::Shown : FrequencyColumn::Hidden);
    if (file) {
        writeToFile(*file, report);
    } else {
        writeToScreen(report);
    }
    return record();
}

// The last step of a command that can fail, so that only what succeeded is recorded.
bool ProbeProcessor::record() { return recordMacroCommand(kAddOnId) || refuse("The host did not record the command"); }

}  // namespace probestats
