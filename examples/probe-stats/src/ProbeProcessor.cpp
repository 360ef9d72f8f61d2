#include "ProbeProcessor.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <utility>

#include "HostStyle.h"
#include "LoadCommand.h"
#include "Output.h"
#include "ProbeError.h"
#include "Report.h"
#include "SpectrumRun.h"
#include "Statistics.h"
#include "vexautilutil/HostGuards.h"
#include "vexautilutil/InvalidInstructionsException.h"
#include "vexautilutil/MacroCommandError.h"

namespace probestats {
namespace {

using vexa::toolbox::Set;
using vexa::vexautilutil::AddOnIdLock;
using vexa::vexautilutil::AuxDataSuspendBroadcast;
using vexa::vexautilutil::DataSetSuspendMarking;
using vexa::vexautilutil::SolutionTimeNotificationDeferrer;

constexpr const char* kNothingLoaded = "No data: LOAD comes first";
constexpr int64_t kUsualSection = 256;
constexpr double kMaxFrequencies = 1e6;

RowWindow allRowsOf(const ProbeData& data) { return {1, data.rowCount(), 1}; }

void requireColumns(const Set& wanted, const ProbeData& data) {
    const Set loaded = data.columnNumbers();
    // Compares runs, because a set can have too many members to visit each one.
    Set missing = wanted;
    for (const Set::Range& range : loaded.ranges()) missing.erase(range.first, range.last);
    if (missing.isEmpty()) return;
    throw ProbeError("COLUMNS asks for " + std::to_string(missing.ranges().front().first) + ", but loaded are " +
                     loaded.toString());
}

// Returns the columns to show: those that the command names, otherwise the active ones of the host.
Set columnsToShow(const std::optional<Set>& named, const HostStyle& style, const ProbeData& data) {
    if (named) {
        requireColumns(*named, data);
        return *named;
    }
    if (!style.activeColumns) return data.columnNumbers();
    Set shown;
    for (const ProbeColumn& column : data.columns) {
        if (style.activeColumns->contains(column.number)) shown.insert(column.number);
    }
    if (!shown.isEmpty()) return shown;
    throw ProbeError("Active in the host are " + style.activeColumns->toString() + ", but loaded are " +
                     data.columnNumbers().toString() + ": name some with COLUMNS");
}

void requireNotTheData(const std::string& fileName, const ProbeData& data) {
    std::error_code notThere;
    if (std::filesystem::equivalent(fileName, data.fileName, notThere)) {
        throw ProbeError("FILE is the file that the data came from: " + fileName);
    }
}

double sampleRateIn(const RowWindow& window, const ProbeData& data) {
    if (!data.sampleRate) throw ProbeError("SPECTRUM needs a sample rate: LOAD with SAMPLERATE or TIMECOLUMN");
    return *data.sampleRate / window.stride;
}

// The options of SUMMARIZE for the spectrum.
struct SpectrumRequest {
    double sampleRate;
    Baseline baseline;
    double minFrequency;
};

SpectrumRequest spectrumRequest(const ProbeData& data, const RowWindow& window, bool detrend, double minFrequency) {
    const double sampleRate = sampleRateIn(window, data);
    if (static_cast<std::size_t>(window.count()) < kMinSpectrumValues) {
        throw ProbeError("SPECTRUM needs " + std::to_string(kMinSpectrumValues) + " rows or more, but the window has " +
                         std::to_string(window.count()));
    }
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

// The options of the command SPECTRUM.
struct SpectrumOptions {
    std::optional<Set> columns;
    std::optional<std::string> file;
    std::optional<int64_t> section;
    std::optional<int64_t> step;
    std::optional<double> minFrequency;
    std::optional<double> maxFrequency;
    std::optional<double> frequencyStep;
    std::optional<int64_t> peaks;
};

// Returns a plan with sections, but without frequencies yet.
SpectrumPlan sectionPlan(const SpectrumOptions& options, double sampleRate, int64_t rows) {
    const auto least = static_cast<int64_t>(kMinSpectrumValues);
    const int64_t section = options.section.value_or(std::max(least, std::min(kUsualSection, rows)));
    const int64_t step = options.step.value_or(section / 2);
    if (section < least) throw ProbeError("SECTION must be " + std::to_string(least) + " or more");
    if (section > rows) {
        throw ProbeError("SECTION is " + std::to_string(section) + ", but the window has " + std::to_string(rows) +
                         " rows");
    }
    if (step < 1) throw ProbeError("STEP must be 1 or more");
    return {sampleRate, static_cast<std::size_t>(section), static_cast<std::size_t>(step), 0.0, 0.0, 0};
}

SpectrumPlan spectrumPlan(const SpectrumOptions& options, double sampleRate, int64_t rows) {
    SpectrumPlan plan = sectionPlan(options, sampleRate, rows);
    // Below this frequency, a section does not contain a whole period.
    const double lowest = sampleRate / static_cast<double>(plan.section);
    const double maxFrequency = options.maxFrequency.value_or(sampleRate / 2.0);
    plan.minFrequency = options.minFrequency.value_or(lowest);
    plan.frequencyStep = options.frequencyStep.value_or(lowest);
    if (plan.minFrequency < 0.0) throw ProbeError("MINFREQUENCY must be 0 or more");
    if (maxFrequency > sampleRate / 2.0) throw ProbeError("MAXFREQUENCY must be at most half the sample rate");
    if (maxFrequency < plan.minFrequency) throw ProbeError("MAXFREQUENCY must be MINFREQUENCY or more");
    if (plan.frequencyStep <= 0.0) throw ProbeError("FREQUENCYSTEP must be above 0");
    // The small addend compensates for rounding if the steps fit exactly.
    const double count = std::floor((maxFrequency - plan.minFrequency) / plan.frequencyStep + 1e-9) + 1.0;
    if (!(count <= kMaxFrequencies)) throw ProbeError("FREQUENCYSTEP is too small: it makes over 1000000 frequencies");
    plan.frequencyCount = static_cast<std::size_t>(count);
    return plan;
}

std::string labelOf(const ProbeColumn& column) {
    return "column " + std::to_string(column.number) + (column.name.empty() ? "" : " (" + column.name + ')');
}

std::vector<SpectrumRow> spectrumRows(const ProbeData& data, const RowWindow& window, const Set& columns,
                                      const SpectrumPlan& plan, std::size_t peakCount) {
    std::vector<Signal> signals;
    std::vector<SpectrumRow> rows;
    for (const ProbeColumn& column : data.columns) {
        if (!columns.contains(column.number)) continue;
        signals.push_back({labelOf(column), valuesIn(window, column)});
        rows.push_back({column.number, column.name, {}});
    }
    std::vector<std::vector<Peak>> peaks = findPeaks(signals, plan, peakCount);
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i].peaks = std::move(peaks[i]);
    return rows;
}

void writeReport(const std::optional<std::string>& file, const std::string& report) {
    if (file) {
        writeToFile(*file, report);
    } else {
        writeToScreen(report);
    }
}

}  // namespace

bool ProbeProcessor::runCommand(const std::string& word) {
    // Commands share data and window and call the host, so no other thread of the host may run in between.
    const AddOnIdLock lock(m_self);
    try {
        if (word == "LOAD") return load();
        if (word == "WINDOW") return window();
        if (word == "SUMMARIZE") return summarize();
        if (word == "SPECTRUM") return spectrum();
        return refuse((word.empty() ? "Missing command" : "Unknown command: " + word) +
                      "; known are LOAD, WINDOW, SUMMARIZE, SPECTRUM");
    } catch (const ProbeError& failure) {
        return refuse(failure.what());
    } catch (const vexa::vexautilutil::MacroCommandError& failure) {
        return refuse(failure.what());
    } catch (const vexa::vexautilutil::InvalidInstructionsException& failure) {
        return refuse(failure.what());
    }
}

bool ProbeProcessor::load() {
    LoadCommand command(optionsText());
    command.execute();
    // The host announces the new solution times only when the data and the window fit together.
    const SolutionTimeNotificationDeferrer times;
    writeToScreen(loadReport(command.data()));
    recordAs(command.toString());
    if (!record()) return false;
    m_window = allRowsOf(command.data());
    m_data = std::move(command.data());
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
    // The host announces the new solution times only when the new window is set.
    const SolutionTimeNotificationDeferrer times;
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
    const HostStyle style = hostStyle();
    const Set shown = columnsToShow(columns, style, *m_data);
    if (file) requireNotTheData(*file, *m_data);

    std::optional<SpectrumRequest> request;
    if (withSpectrum) {
        request = spectrumRequest(*m_data, m_window, detrend.value_or(false), minFrequency.value_or(0.0));
    }
    const std::vector<SummaryRow> rows = summaryRows(*m_data, m_window, shown, request);
    writeReport(file, summaryReport(*m_data, m_window, rows,
                                    withSpectrum ? FrequencyColumn::Shown : FrequencyColumn::Hidden, style.report));
    return record();
}

bool ProbeProcessor::spectrum() {
    SpectrumOptions options;
    if (!readOptions("SPECTRUM", {{"COLUMNS", &options.columns},
                                  {"FILE", &options.file},
                                  {"SECTION", &options.section},
                                  {"STEP", &options.step},
                                  {"MINFREQUENCY", &options.minFrequency},
                                  {"MAXFREQUENCY", &options.maxFrequency},
                                  {"FREQUENCYSTEP", &options.frequencyStep},
                                  {"PEAKS", &options.peaks}})) {
        return false;
    }
    if (!m_data) return refuse(kNothingLoaded);
    const HostStyle style = hostStyle();
    const Set shown = columnsToShow(options.columns, style, *m_data);
    if (options.file) requireNotTheData(*options.file, *m_data);
    if (options.peaks.value_or(1) < 1) return refuse("PEAKS must be 1 or more");

    const SpectrumPlan plan = spectrumPlan(options, sampleRateIn(m_window, *m_data), m_window.count());
    const std::vector<SpectrumRow> rows =
        spectrumRows(*m_data, m_window, shown, plan, static_cast<std::size_t>(options.peaks.value_or(1)));
    // Results that are derived from the data do not change the data set.
    const DataSetSuspendMarking unchanged;
    // The host announces the results once, at the end.
    const AuxDataSuspendBroadcast quiet;
    writeReport(options.file, spectrumReport(*m_data, m_window, plan, rows, style.report));
    return record();
}

// This is the last step that can fail, so that only successful commands are recorded.
bool ProbeProcessor::record() { return recordMacroCommand(kAddOnId) || refuse("The host did not record the command"); }

}  // namespace probestats
