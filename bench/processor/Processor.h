#pragma once

#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace vexa::vexautilutil {

// A processor whose processCommand() calls `Read` with itself.
template <class Read>
class Processor : public MacroCommandProcessorAbstract {
public:
    explicit Processor(Read read) : m_read(read) {}
    bool processCommand() override { return m_read(*this); }
    bool composeCommandString(std::string&) const override { return false; }

private:
    Read m_read;
};

}  // namespace vexa::vexautilutil
