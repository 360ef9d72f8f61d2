#include "session/Hang.h"

#include <string>

#include "text/Seconds.h"

namespace vexa::runner {
namespace {

// Of a command; what else an add-on does has no id in front.
std::string addOnIdOf(const standin::Place& place) {
    return place.macroLine.empty() ? "" : place.command.substr(0, place.command.find(' '));
}

}  // namespace

standin::Finding hangFinding(const standin::Place& last, std::size_t callsBefore,
                             std::chrono::duration<double> waited) {
    const bool hasCalled = last.call > callsBefore;
    standin::Finding finding;
    finding.rule = "command-timeout";
    finding.addOnId = addOnIdOf(last);
    finding.message = '"' + last.command + "\" has not returned within " + secondsText(waited) +
                      (hasCalled ? "; its last host call was " + last.function : "; it made no host call");
    finding.opened = standin::Place{0, "", last.command, last.macroLine, last.thread};
    finding.seen = hasCalled ? last : standin::Place{0, "", "", last.macroLine, 0};
    return finding;
}

}  // namespace vexa::runner
