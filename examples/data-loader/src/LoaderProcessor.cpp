#include "LoaderProcessor.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <new>
#include <system_error>
#include <utility>

#include "ColumnSummary.h"
#include "Errors.h"
#include "TableReader.h"
#include "TableWriter.h"
#include "vexautilutil/HostGuards.h"

namespace dataloader {
namespace {

using vexa::vexautilutil::AddOnIdLock;
using vexa::vexautilutil::AuxDataSuspendBroadcast;
using vexa::vexautilutil::DataSetSuspendMarking;

constexpr char kEscape = '\\';
constexpr char kSingleQuote = '\'';

// getStringValue() would wait forever for a missing closing quote.
bool hasOpenQuote(const std::string& text) {
    char open = '\0';
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (open == '\0') {
            if (c == '\'' || c == '"') open = c;
        } else if (c == kEscape) {
            ++i;
        } else if (c == open) {
            open = '\0';
        }
    }
    return open != '\0';
}

std::string escaped(std::string text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == kSingleQuote || text[at] == kEscape) text.insert(at++, 1, kEscape);
    }
    return text;
}

const std::string& required(const std::optional<std::string>& value, const std::string& option) {
    if (!value) throw LoaderError("Missing option: " + option);
    return *value;
}

// Returns the meaning of a value that must be one of a few words; without the option, the meaning of the first word.
template <typename Meaning>
Meaning oneOf(const std::optional<std::string>& value, const std::string& option,
              const std::vector<std::pair<std::string, Meaning>>& words) {
    if (!value) return words.front().second;
    std::string known;
    for (const auto& [word, meaning] : words) {
        if (*value == word) return meaning;
        known += (known.empty() ? "" : ", ") + word;
    }
    throw LoaderError("Expected one of " + known + " for " + option + ", but found " + *value);
}

void print(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0) return;
    const int reason = errno;
    std::clearerr(stdout);
    throw LoaderError("Cannot write the standard output: " + std::generic_category().message(reason));
}

std::string sizeText(const Table& table) {
    return table.fileName + ": " + std::to_string(table.columns.size()) + " columns, " +
           std::to_string(table.rowCount()) + " rows";
}

std::string loadText(const Table& table) {
    std::string text = "Loaded " + sizeText(table);
    if (table.rowsLeftOut > 0) text += ", and " + std::to_string(table.rowsLeftOut) + " left out for missing values";
    return text + '\n';
}

}  // namespace

bool LoaderProcessor::parseCommandString(const char* commandString, char** errMsg) {
    m_text = commandString;
    return MacroCommandProcessorAbstract::parseCommandString(commandString, errMsg);
}

bool LoaderProcessor::composeCommandString(std::string& command) const {
    command = m_recordable;
    return true;
}

bool LoaderProcessor::processCommand() {
    try {
        // Commands share the table and call the host, so no other thread of the host may run in between.
        const AddOnIdLock lock(m_self);
        runCommand();
        return true;
    } catch (const std::bad_alloc&) {
        depositErrorMessage("Error: Not enough memory");
    } catch (const std::exception& failure) {
        depositErrorMessage("Error: " + std::string(failure.what()));
    }
    return false;
}

void LoaderProcessor::runCommand() {
    std::string word;
    getCommand(word);
    if (word == "LOAD") return load();
    if (word == "SUMMARY") return summary();
    if (word == "EXPORT") return exportTable();
    throw LoaderError((word.empty() ? "Missing command" : "Unknown command: " + word) +
                      "; known are LOAD, SUMMARY, EXPORT");
}

void LoaderProcessor::load() {
    std::optional<std::string> file;
    std::optional<std::string> separator;
    std::optional<std::string> missing;
    readOptions("LOAD", {{"FILE", &file}, {"SEPARATOR", &separator}, {"MISSING", &missing}});
    LoadRequest request;
    request.fileName = required(file, "FILE");
    request.separator = oneOf<std::optional<Separator>>(
        separator, "SEPARATOR", {{"auto", std::nullopt}, {"comma", Separator::Comma}, {"blank", Separator::Blank}});
    request.missing = oneOf<MissingValues>(
        missing, "MISSING",
        {{"refuse", MissingValues::Refuse}, {"skip", MissingValues::Skip}, {"keep", MissingValues::Keep}});

    Table loaded = readTable(request);
    // The host announces the new data once, at the end.
    const AuxDataSuspendBroadcast quiet;
    print(loadText(loaded));
    record();
    m_table = std::move(loaded);
}

void LoaderProcessor::summary() {
    readOptions("SUMMARY", {});
    // Results that are derived from the data do not change the data set.
    const DataSetSuspendMarking unchanged;
    print(sizeText(table()) + '\n' + summaryText(table()));
    record();
}

void LoaderProcessor::exportTable() {
    std::optional<std::string> file;
    readOptions("EXPORT", {{"FILE", &file}});
    const std::string& fileName = required(file, "FILE");
    // Results that are derived from the data do not change the data set.
    const DataSetSuspendMarking unchanged;
    writeTable(table(), fileName);
    print("Wrote " + fileName + ": " + std::to_string(table().rowCount()) + " rows\n");
    record();
}

// Reads the command to its end, and builds the command to record: the given options, in the order of the table.
void LoaderProcessor::readOptions(const std::string& command, const std::vector<Option>& options) {
    if (hasOpenQuote(m_text)) throw LoaderError("Missing closing quote of: " + m_text);
    std::string name;
    while (getNextName(name)) {
        readOption(name, options);
        name.clear();
    }
    // At the end of the command the name stays empty.
    if (!name.empty()) throw LoaderError("Expected NAME = 'value', but found " + name);
    m_recordable = command;
    for (const Option& option : options) {
        if (!*option.value) continue;
        m_recordable += ' ' + toNameValueAssignment(option.name, escaped(**option.value));
        m_recordable.pop_back();  // the blank after the value
    }
}

void LoaderProcessor::readOption(const std::string& name, const std::vector<Option>& options) {
    const auto option = std::find_if(options.begin(), options.end(), [&](const Option& o) { return name == o.name; });
    if (option == options.end()) throw LoaderError("Unknown option: " + name);
    if (*option->value) throw LoaderError("Option given twice: " + name);
    std::string value;
    if (!getStringValue(value, true) || value.empty()) throw LoaderError("Expected a quoted text for " + name);
    // A line of a macro file could not hold the recorded command.
    if (value.find('\n') != std::string::npos) throw LoaderError("Line break in the text for " + name);
    *option->value = value;
}

const Table& LoaderProcessor::table() const {
    if (!m_table) throw LoaderError("No table: LOAD comes first");
    return *m_table;
}

// This is the last step that can fail, so that only successful commands are recorded.
void LoaderProcessor::record() {
    if (!recordMacroCommand(kAddOnId)) throw LoaderError("The host did not record the command");
}

}  // namespace dataloader
