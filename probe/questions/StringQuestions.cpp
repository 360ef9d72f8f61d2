// Host strings.

#include <algorithm>
#include <cstddef>

#include "probe/questions/Owned.h"
#include "probe/questions/Questions.h"

namespace vexa::probe {
namespace {

constexpr const char* kPurpose = "vexa-probe";
constexpr std::size_t kSmall = 64;
constexpr int kLarge = 1 << 20;

bool isGiven(int size, const char* purpose = kPurpose) {
    char* const string = VexaUtilStringAlloc(size, purpose);
    if (string == nullptr) return false;
    const OwnedString freed(string);
    return true;
}

Answer clearsStringHandle(const Circumstances&) {
    return OwnedString(VexaUtilStringAlloc(kSmall, kPurpose)).isClearedWhenFreed();
}

Answer givesNoBytes(const Circumstances&) { return isGiven(0); }

Answer givesNegative(const Circumstances&) { return isGiven(-1); }

Answer givesLarge(const Circumstances&) { return isGiven(kLarge); }

Answer isZeroed(const Circumstances&) {
    const OwnedString string(VexaUtilStringAlloc(kSmall, kPurpose));
    return std::all_of(string.get(), string.get() + kSmall, [](char c) { return c == 0; });
}

Answer givesWithoutPurpose(const Circumstances&) { return isGiven(kSmall, nullptr); }

}  // namespace

std::vector<Question> stringQuestions() {
    using facts::Fact;
    return {{Fact::StringDeallocClearsHandle, clearsStringHandle},
            {Fact::StringAllocNoBytes, givesNoBytes},
            {Fact::StringAllocNegative, givesNegative},
            {Fact::StringAllocLarge, givesLarge},
            {Fact::StringAllocIsZeroed, isZeroed},
            {Fact::StringAllocNoPurpose, givesWithoutPurpose}};
}

}  // namespace vexa::probe
