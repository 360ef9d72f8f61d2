#include "TableReader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <system_error>

#include "Errors.h"
#include "LongTask.h"
#include "vexautilutil/AsciiFile.h"
#include "vexautilutil/FileSystem.h"

namespace dataloader {
namespace {

using vexa::vexautilutil::AsciiFile;

constexpr char kComment = '#';
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kQuotedLength = 40;
constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();
// The last line may end with a carriage return and a line feed.
constexpr uint64_t kLongestLineEnd = 2;

std::string shown(std::string_view cell) {
    const std::string text = textIn(cell);
    return '"' + text.substr(0, kQuotedLength) + (text.size() > kQuotedLength ? "..." : "") + '"';
}

// Builds a table from the header line and the rows.
class TableBuilder {
public:
    explicit TableBuilder(const LoadRequest& request) : m_request(request) { m_table.fileName = request.fileName; }

    bool hasHeader() const { return !m_table.columns.empty(); }
    std::size_t columnCount() const { return m_table.columns.size(); }

    void addHeader(std::string_view text) {
        m_separator = m_request.separator.value_or(separatorIn(text));
        Cells cells(text, m_separator);
        bool hasName = false;
        for (std::string_view cell; cells.next(cell);) {
            m_table.columns.push_back({textIn(cell), {}});
            if (m_table.columns.back().name.empty())
                throw RowError("Expected a name for " + columnAt(columnCount() - 1));
            double number = 0.0;
            hasName |= cell.front() == '"' || readNumber(cell, number) == CellContent::Other;
        }
        if (!hasName) throw RowError("Expected the names of the columns, but found numbers");
        m_row.resize(columnCount());
    }

    void reserve(std::size_t rows) {
        for (Column& column : m_table.columns) column.values.reserve(rows);
    }

    void addRow(std::string_view text) {
        if (!readRow(text)) {
            ++m_table.rowsLeftOut;
            return;
        }
        for (std::size_t i = 0; i < m_row.size(); ++i) m_table.columns[i].values.push_back(m_row[i]);
    }

    Table finish() {
        if (!hasHeader()) throw LoaderError("There is no table in " + m_request.fileName);
        if (m_table.rowCount() > 0) return std::move(m_table);
        throw LoaderError("There are no rows " + std::string(m_table.rowsLeftOut > 0 ? "without missing values " : "") +
                          "in " + m_request.fileName);
    }

private:
    // Returns false if the row must be skipped.
    bool readRow(std::string_view text) {
        Cells cells(text, m_separator);
        std::size_t count = 0;
        bool isComplete = true;
        for (std::string_view cell; cells.next(cell); ++count) {
            if (count < m_row.size()) isComplete &= readCell(cell, count);
        }
        if (count != m_row.size()) {
            throw RowError("Expected " + std::to_string(m_row.size()) + " columns, but found " + std::to_string(count));
        }
        return isComplete || m_request.missing == MissingValues::Keep;
    }

    // Returns false if the value is missing.
    bool readCell(std::string_view cell, std::size_t index) {
        const CellContent content = readNumber(cell, m_row[index]);
        if (content == CellContent::Number) return true;
        if (content == CellContent::Other) {
            throw RowError("Expected a number in " + columnAt(index) + ", but found " + shown(cell));
        }
        if (m_request.missing == MissingValues::Refuse) throw RowError("Missing value in " + columnAt(index));
        m_row[index] = kMissing;
        return false;
    }

    std::string columnAt(std::size_t index) const {
        const std::string& name = m_table.columns[index].name;
        return "column " + std::to_string(index + 1) + (name.empty() ? "" : " (" + name + ')');
    }

    const LoadRequest& m_request;
    Separator m_separator = Separator::Comma;
    Table m_table;
    std::vector<double> m_row;  // the values of the current row; a member, to reuse its memory
};

unsigned long sizeOf(const std::string& fileName) {
    unsigned long size = 0;
    // Refuses a pipe, because the reader would wait for its writer.
    const auto status = vexa::filesystem::fileStatus(fileName, true);
    if (exists(status) && !is_regular_file(status)) {
        throw LoaderError("Cannot open " + fileName + ": it is no regular file");
    }
    if (vexa::filesystem::fileSize(fileName, size)) return size;
    throw LoaderError("Cannot open " + fileName + ": " + std::generic_category().message(errno));
}

// Returns true if the reader has not seen all of the text: a NUL ends the file, and a carriage return ends a line.
bool endsEarly(const AsciiFile& file, unsigned long size) {
    if (file.numLinesInFile() == 0) return size > 0;
    const char* const last = file.readRawLineAtOffset(file.numLinesInFile() - 1);
    const auto seen = static_cast<uint64_t>(last - file.readRawLineAtOffset(0)) + std::strlen(last);
    return size > seen + kLongestLineEnd;
}

[[noreturn]] void refuse(const AsciiFile& file, const std::string& reason, uint64_t line) {
    file.error(reason, line);
    throw LoaderError("Nothing was loaded from " + file.fileName());
}

// A row has at least one byte for each column.
std::size_t mostRows(const AsciiFile& file, unsigned long size, std::size_t columns) {
    return std::min<uint64_t>(file.numLinesInFile(), size / columns + 1);
}

Table readLines(AsciiFile& file, const LoadRequest& request, unsigned long size) {
    LongTask task("LOAD", "Loading " + request.fileName, file.numLinesInFile());
    TableBuilder builder(request);
    for (; !file.isEOF(); task.step()) {
        const uint64_t line = file.currentLineNumber();
        std::string_view text = file.readRawLine();
        if (file.isEmptyLine(line) || file.isCommentLine(line, kComment)) continue;
        if (builder.hasHeader()) {
            builder.addRow(text);
            continue;
        }
        if (line == 0 && text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
            text.remove_prefix(kByteOrderMark.size());
        }
        builder.addHeader(text);
        builder.reserve(mostRows(file, size, builder.columnCount()));
    }
    return builder.finish();
}

}  // namespace

Table readTable(const LoadRequest& request) {
    const unsigned long size = sizeOf(request.fileName);
    AsciiFile file;
    if (!file.open(request.fileName)) {
        throw LoaderError("Cannot open " + request.fileName + ": " + std::generic_category().message(errno));
    }
    if (endsEarly(file, size)) {
        refuse(file, "The text has a NUL, or a carriage return without a line feed,",
               std::max<uint64_t>(file.numLinesInFile(), 1));
    }
    try {
        return readLines(file, request, size);
    } catch (const RowError& failure) {
        refuse(file, failure.what(), file.currentLineNumber());
    }
}

}  // namespace dataloader
