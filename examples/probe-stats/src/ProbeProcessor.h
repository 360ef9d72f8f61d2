#pragma once

#include <optional>
#include <string>

#include "OptionsProcessor.h"
#include "ProbeData.h"

namespace probestats {

/// The name by which macros address the add-on.
inline constexpr const char* kAddOnId = "PROBESTATS";

/// The commands of the add-on, and what they leave for the next one: the loaded data, and the window on it. A command
/// that fails leaves both as they were.
class ProbeProcessor : public OptionsProcessor {
public:
    bool runCommand(const std::string& word) override;

private:
    bool load();
    bool window();
    bool summarize();
    bool record();

    std::optional<ProbeData> m_data;
    RowWindow m_window;
};

}  // namespace probestats
