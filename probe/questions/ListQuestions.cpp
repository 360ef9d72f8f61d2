// Argument lists.

#include <cstddef>

#include "probe/questions/Owned.h"
#include "probe/questions/Questions.h"

namespace vexa::probe {
namespace {

constexpr const char* kName = "VEXAPROBE";
constexpr std::size_t kLongText = 100000;
constexpr int kMany = 1000;

OwnedList newList() { return OwnedList(VexaUtilArgListAlloc()); }

bool takes(const OwnedList& list, const char* name, const char* value) {
    return VexaUtilArgListAppendString(list.get(), name, value) != 0;
}

Answer clearsListHandle(const Circumstances&) { return newList().isClearedWhenFreed(); }

Answer takesEmptyName(const Circumstances&) { return takes(newList(), "", "value"); }

Answer takesEmptyText(const Circumstances&) { return takes(newList(), kName, ""); }

Answer takesLongText(const Circumstances&) { return takes(newList(), kName, std::string(kLongText, 'x').c_str()); }

Answer takesOtherCase(const Circumstances&) {
    const OwnedList list = newList();
    return takes(list, "VEXAPROBE", "value") && takes(list, "VexaProbe", "value");
}

Answer most(const Circumstances&) {
    const OwnedList list = newList();
    long taken = 0;
    for (int i = 0; i != kMany; ++i) {
        taken += VexaUtilArgListAppendInt(list.get(), (kName + std::to_string(i)).c_str(), i) != 0 ? 1 : 0;
    }
    return taken;
}

Answer takesSameNameTwice(const Circumstances&) {
    const OwnedList list = newList();
    const bool isFirstTaken = takes(list, kName, "value");
    return isFirstTaken && takes(list, kName, "value");
}

}  // namespace

std::vector<Question> listQuestions() {
    using facts::Fact;
    return {{Fact::ListDeallocClearsHandle, clearsListHandle},  {Fact::ListAppendEmptyName, takesEmptyName},
            {Fact::ListAppendEmptyText, takesEmptyText},        {Fact::ListAppendLongText, takesLongText},
            {Fact::ListAppendOtherCase, takesOtherCase},        {Fact::ListAppendMost, most},
            {Fact::ListAppendSameNameTwice, takesSameNameTwice}};
}

}  // namespace vexa::probe
