#include "contract/Moment.h"

namespace vexa::standin {
namespace {

std::string commandOf(const Entry& entry) {
    if (entry.addOnId.empty()) return "";
    switch (entry.kind) {
        case Entry_e::Loading: return "loading of " + entry.addOnId;
        case Entry_e::Command: return entry.addOnId + ' ' + entry.command;
        case Entry_e::Unloading: return "unloading of " + entry.addOnId;
    }
    return "";
}

}  // namespace

std::string nameOf(const Entry& entry) {
    switch (entry.kind) {
        case Entry_e::Loading: return "the loading";
        case Entry_e::Command: return "the command";
        case Entry_e::Unloading: return "the unloading";
    }
    return "";
}

Place placeOf(const Moment& moment) {
    return {moment.call,
            moment.function ? nameOf(*moment.function) : "",
            commandOf(*moment.entry),
            moment.entry->macroLine,
            moment.thread,
            moment.call == 0 && moment.stack == nullptr ? moment.entry->stack : moment.stack};
}

}  // namespace vexa::standin
