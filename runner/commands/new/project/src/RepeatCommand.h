#pragma once

#include <cstdint>
#include <string>

#include "vexautilutil/MacroCommandAbstract.h"

/// REPEAT TEXT="Hello" TIMES=3 prints a text as often as it is told to. Both options may be left out.
class RepeatCommand : public vexa::vexautilutil::MacroCommandAbstract {
public:
    static constexpr const char* kName = "REPEAT";

    /// Reads \p options, the command without its name.
    /// \throws MacroCommandError, as execute() does: a message for the user.
    explicit RepeatCommand(const std::string& options);

    void execute() override;

private:
    std::string m_text;
    uint64_t m_times;
};
