#include "ProbeData.h"

#include <cerrno>
#include <cmath>
#include <system_error>

#include "ProbeError.h"
#include "vexa/Scanner.h"
#include "vexautilutil/AsciiFile.h"
#include "vexautilutil/FileSystem.h"
#include "vexautilutil/InvalidInstructionsException.h"

namespace probestats {
namespace {

using vexa::vexautilutil::AsciiFile;
using vexa::vexautilutil::InvalidInstructionsException;

constexpr char kComment = '#';
constexpr double kTimeTolerance = 0.01;
constexpr std::size_t kQuotedLength = 40;

std::vector<std::string> wordsOf(const std::string& line) {
    std::vector<std::string> words;
    vexa::Scanner scanner;
    scanner.reset(line);
    while (scanner.hasNextToken()) words.push_back(scanner.nextToken());
    return words;
}

// Returns the words of the next row; none at the end. The file's current line number is then the number of that line.
std::vector<std::string> nextRow(AsciiFile& file) {
    for (; !file.isEOF(); file.advanceToNextLine()) {
        const uint64_t line = file.currentLineNumber();
        if (!file.isEmptyLine(line) && !file.isCommentLine(line, kComment)) return wordsOf(file.readLine());
    }
    return {};
}

// Refuses infinities and NaN, because they would make every statistic useless.
bool toNumber(const std::string& word, double& number) {
    vexa::Scanner scanner;
    scanner.reset(word);
    if (!scanner.hasNextDoubleToken()) return false;
    number = scanner.nextDoubleToken();
    return std::isfinite(number);
}

std::string quoted(const std::string& word) {
    return '"' + (word.size() > kQuotedLength ? word.substr(0, kQuotedLength) + "..." : word) + '"';
}

// Collects the rows of a file. The first row decides the number of columns.
class RowCollector {
public:
    explicit RowCollector(const ProbeFileRequest& request) : m_request(request) {}

    void addHeader(const std::vector<std::string>& words) {
        settleColumns(words.size());
        for (ProbeColumn& column : m_columns) column.name = words[static_cast<std::size_t>(column.number - 1)];
    }

    void add(const std::vector<std::string>& words, uint64_t line) {
        if (m_columnCount == 0) settleColumns(words.size());
        if (words.size() != m_columnCount) {
            throw InvalidInstructionsException(place(line), "expected " + std::to_string(m_columnCount) +
                                                                " columns, found " + std::to_string(words.size()));
        }
        for (ProbeColumn& column : m_columns) column.values.push_back(numberAt(column.number, words, line));
        if (m_request.timeColumn) m_times.push_back(numberAt(static_cast<int64_t>(*m_request.timeColumn), words, line));
        ++m_rowCount;
    }

    ProbeData finish() {
        if (m_rowCount < kMinRows) {
            throw InvalidInstructionsException(m_request.fileName, "expected at least " + std::to_string(kMinRows) +
                                                                       " rows, found " + std::to_string(m_rowCount));
        }
        ProbeData data{m_request.fileName, std::move(m_columns), m_request.sampleRate};
        if (m_request.timeColumn) data.sampleRate = rateOfTimes();
        return data;
    }

private:
    std::string place(uint64_t line) const { return m_request.fileName + ':' + std::to_string(line); }

    void settleColumns(std::size_t count) {
        vexa::toolbox::Set wanted;
        wanted.insert(1, static_cast<int64_t>(count));
        if (m_request.columns) wanted = *m_request.columns;
        requireColumn("COLUMNS", static_cast<uint64_t>(wanted.ranges().front().first), count);
        requireColumn("COLUMNS", static_cast<uint64_t>(wanted.ranges().back().last), count);
        if (m_request.timeColumn) requireColumn("TIMECOLUMN", *m_request.timeColumn, count);
        for (const int64_t number : wanted) m_columns.push_back({number, {}});
        m_columnCount = count;
    }

    void requireColumn(const char* option, uint64_t number, std::size_t last) const {
        if (number >= 1 && number <= last) return;
        throw InvalidInstructionsException(m_request.fileName, "columns are 1 to " + std::to_string(last) + ", but " +
                                                                   option + " asks for " + std::to_string(number));
    }

    double numberAt(int64_t column, const std::vector<std::string>& words, uint64_t line) const {
        const std::string& word = words[static_cast<std::size_t>(column - 1)];
        double number = 0.0;
        if (toNumber(word, number)) return number;
        throw InvalidInstructionsException(place(line),
                                           "column " + std::to_string(column) + " is no number: " + quoted(word));
    }

    double rateOfTimes() const {
        const double duration = m_times.back() - m_times.front();
        const auto steps = static_cast<double>(m_times.size() - 1);
        const double step = duration / steps;
        for (std::size_t row = 1; row < m_times.size(); ++row) {
            const double deviation = std::abs(m_times[row] - m_times[row - 1] - step);
            if (step > 0.0 && deviation <= kTimeTolerance * step) continue;
            throw InvalidInstructionsException(m_request.fileName,
                                               "the times in column " + std::to_string(*m_request.timeColumn) +
                                                   " do not advance evenly at row " + std::to_string(row + 1));
        }
        return steps / duration;
    }

    const ProbeFileRequest& m_request;
    std::size_t m_columnCount = 0;
    int64_t m_rowCount = 0;
    std::vector<ProbeColumn> m_columns;
    std::vector<double> m_times;
};

}  // namespace

vexa::toolbox::Set ProbeData::columnNumbers() const {
    vexa::toolbox::Set numbers;
    for (const ProbeColumn& column : columns) numbers.insert(column.number);
    return numbers;
}

ProbeData readProbeFile(const ProbeFileRequest& request) {
    // Refuses a pipe, because the reader would wait for its writer.
    const auto status = vexa::filesystem::fileStatus(request.fileName, true);
    if (exists(status) && !is_regular_file(status)) {
        throw ProbeError("Cannot open " + request.fileName + ": it is no regular file");
    }
    AsciiFile file;
    if (!file.open(request.fileName)) {
        throw ProbeError("Cannot open " + request.fileName + ": " + std::generic_category().message(errno));
    }
    RowCollector rows(request);
    bool headerIsNext = request.hasHeader;
    uint64_t toSkip = request.skipRows;
    for (auto words = nextRow(file); !words.empty(); words = nextRow(file)) {
        if (headerIsNext) {
            rows.addHeader(words);
            headerIsNext = false;
        } else if (toSkip > 0) {
            --toSkip;
        } else {
            rows.add(words, file.currentLineNumber());
        }
    }
    return rows.finish();
}

std::vector<double> valuesIn(const RowWindow& window, const ProbeColumn& column) {
    std::vector<double> values;
    values.reserve(static_cast<std::size_t>(window.count()));
    for (int64_t i = 0; i < window.count(); ++i) {
        values.push_back(column.values[static_cast<std::size_t>(window.first - 1 + i * window.stride)]);
    }
    return values;
}

}  // namespace probestats
