#pragma once

#include <cstdint>
#include <string>

#include "vexautilutil/MacroCommandAbstract.h"

/// REPEAT TEXT="Hello" TIMES=3 prints the text three times. Both options are optional.
class RepeatCommand : public vexa::vexautilutil::MacroCommandAbstract {
public:
    static constexpr const char* kName = "REPEAT";

    /// Reads \p options, the command without its name.
    /// \throws MacroCommandError with a message for the user, as execute() does.
    explicit RepeatCommand(const std::string& options);

    void execute() override;

private:
    std::string m_text;
    uint64_t m_times;
};
