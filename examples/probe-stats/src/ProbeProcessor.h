#pragma once

#include <optional>
#include <string>

#include "OptionsProcessor.h"
#include "ProbeData.h"

struct AddOnList_s;

namespace probestats {

/// The name by which macros address the add-on.
inline constexpr const char* kAddOnId = "PROBESTATS";

/// The commands of the add-on, and the data that they share: the loaded signals and the window. A command that fails
/// changes neither.
class ProbeProcessor : public OptionsProcessor {
public:
    /// \param self the add-on's identity, for the host's lock.
    explicit ProbeProcessor(AddOnList_s* self) : m_self(self) {}

    bool runCommand(const std::string& word) override;

private:
    bool load();
    bool window();
    bool summarize();
    bool spectrum();
    bool record();

    AddOnList_s* m_self;
    std::optional<ProbeData> m_data;
    RowWindow m_window;
};

}  // namespace probestats
