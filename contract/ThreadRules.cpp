#include "contract/ThreadRules.h"

#include <cstddef>
#include <optional>
#include <string>

namespace vexa::standin {
namespace {

constexpr std::size_t kNoThread = 0;  // for the time outside all add-ons

}  // namespace

void ThreadRules::callBegan(const Moment& now, FindingLog& findings) {
    const std::size_t entered = now.entry->thread;
    if (entered == kNoThread || entered == now.thread || infoOf(*now.function).isForAnyThread) return;
    const Moment entering{now.entry, entered, 0, std::nullopt};
    findings.add("wrong-thread",
                 std::string(nameOf(*now.function)) + " was called on thread " + std::to_string(now.thread) +
                     ", but the host entered the add-on on thread " + std::to_string(entered),
                 now, &entering);
}

}  // namespace vexa::standin
