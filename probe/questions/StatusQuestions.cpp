// The status line.

#include "probe/questions/Questions.h"

namespace vexa::probe {
namespace {

class ShownStatus {
public:
    ShownStatus() { VexaUtilStatusStartPercentDone("Probing", 0, 1); }
    ShownStatus(const ShownStatus&) = delete;
    ShownStatus& operator=(const ShownStatus&) = delete;
    ~ShownStatus() { VexaUtilStatusFinishPercentDone(); }
};

bool check(int percent) { return VexaUtilStatusCheckPercentDone(percent) != 0; }

Answer whileShown(const Circumstances&) {
    const ShownStatus shown;
    return check(50);
}

Answer beforeStart(const Circumstances&) { return check(0); }

Answer afterFinish(const Circumstances&) {
    { const ShownStatus shown; }
    return check(100);
}

Answer over100(const Circumstances&) {
    const ShownStatus shown;
    return check(101);
}

Answer negativePercentage(const Circumstances&) {
    const ShownStatus shown;
    return check(-1);
}

Answer backwards(const Circumstances&) {
    const ShownStatus shown;
    check(80);
    return check(20);
}

}  // namespace

std::vector<Question> statusQuestions() {
    using facts::Fact;
    return {{Fact::StatusCheckWhileShown, whileShown},       {Fact::StatusCheckBeforeStart, beforeStart},
            {Fact::StatusCheckAfterFinish, afterFinish},     {Fact::StatusCheckOver100, over100},
            {Fact::StatusCheckNegative, negativePercentage}, {Fact::StatusCheckBackwards, backwards}};
}

}  // namespace vexa::probe
