#include "options/ExitStatus.h"

namespace vexa::runner {

std::string meaningOf(ExitStatus_e status) {
    switch (status) {
        case ExitStatus_e::AllWell: return "all went well";
        case ExitStatus_e::CommandFailed: return "a command failed";
        case ExitStatus_e::BadUsageOrInput: return "wrong input, or a file could not be read or written";
        case ExitStatus_e::ContractViolated: return "an add-on broke the host's contract";
        case ExitStatus_e::CommandHung: return "a command did not return";
        case ExitStatus_e::ProcessEnded: return "an add-on ended its process";
        case ExitStatus_e::Stopped: return "stopped by Ctrl-C";
    }
    return "";
}

}  // namespace vexa::runner
