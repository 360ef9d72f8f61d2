#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Table.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

struct AddOnList_s;

namespace dataloader {

/// The name by which macros address the add-on.
inline constexpr const char* kAddOnId = "DATALOADER";

/// The commands of the add-on, and the table that they share. A command that fails does not change the table.
///
///     LOAD FILE = 'station.csv' SEPARATOR = 'auto' MISSING = 'refuse'
///     SUMMARY
///     EXPORT FILE = 'out.csv'
class LoaderProcessor : public vexa::vexautilutil::MacroCommandProcessorAbstract {
public:
    /// \param self the add-on's identity, for the host's lock.
    explicit LoaderProcessor(AddOnList_s* self) : m_self(self) {}

    bool parseCommandString(const char* commandString, char** errMsg) override;
    bool processCommand() override;
    bool composeCommandString(std::string& command) const override;

private:
    /// An option. Every option has a text as its value.
    struct Option {
        const char* name;
        std::optional<std::string>* value;
    };

    void runCommand();
    void load();
    void summary();
    void exportTable();

    void readOptions(const std::string& command, const std::vector<Option>& options);
    void readOption(const std::string& name, const std::vector<Option>& options);
    const Table& table() const;
    void record();

    AddOnList_s* m_self;
    std::optional<Table> m_table;
    std::string m_text;        // the command, unchanged
    std::string m_recordable;  // the command to record
};

}  // namespace dataloader
