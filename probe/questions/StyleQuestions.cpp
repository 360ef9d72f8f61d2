// Style queries. A query keeps the contract unless its question says otherwise: its path has no gap, and it has one
// place for the value.

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "probe/questions/Owned.h"
#include "probe/questions/Questions.h"

namespace vexa::probe {
namespace {

using Path = std::vector<std::string>;

constexpr const char* kUnknown = "VEXAPROBENOSUCHSETTING";
constexpr double kUntouched = -12345.678;
constexpr long kWrongOffset = 1000000;
constexpr std::size_t kMostKeywords = 6;

std::string nameOf(GetValueReturnCode_e code) {
    switch (code) {
        case GetValueReturnCode_Ok: return "Ok";
        case GetValueReturnCode_OtherType: return "OtherType";
        case GetValueReturnCode_UnknownPath: return "UnknownPath";
        case GetValueReturnCode_NotAvailable: return "NotAvailable";
    }
    return std::to_string(code);
}

class Query {
public:
    Query& keyword(std::size_t number, const std::string& text) {
        return taken(VexaUtilArgListAppendString(m_list.get(), ('P' + std::to_string(number)).c_str(), text.c_str()));
    }
    Query& path(const Path& keywords) {
        for (std::size_t i = 0; i != keywords.size(); ++i) keyword(i + 1, keywords[i]);
        return *this;
    }
    Query& offset(long offset) { return taken(VexaUtilArgListAppendInt(m_list.get(), "Offset1", offset)); }
    Query& unknownArgument() { return taken(VexaUtilArgListAppendString(m_list.get(), "VexaProbe", "value")); }
    Query& number() { return number(m_number); }
    Query& number(double& place) { return taken(VexaUtilArgListAppendDoublePtr(m_list.get(), "DValue", &place)); }
    Query& param() { return taken(VexaUtilArgListAppendArbParamPtr(m_list.get(), "IValue", &m_param)); }

    std::string ask() { return nameOf(VexaUtilStyleGetLowLevelX(m_list.get())); }
    bool isNumberUntouched() const { return m_number == kUntouched; }

private:
    Query& taken(VexaBoolean isTaken) {
        if (isTaken == 0) throw Unanswerable("the argument list refused an argument of the query");
        return *this;
    }

    OwnedList m_list{VexaUtilArgListAlloc()};
    double m_number = kUntouched;
    VexaArbParam m_param = 0;
};

const Path& settingOf(const Circumstances& now) {
    if (now.setting.empty()) throw Unanswerable("asked only with SETTING = 'KEYWORDS', the path of a double");
    return now.setting;
}

Path inLowerCase(Path path) {
    for (std::string& keyword : path) {
        std::transform(keyword.begin(), keyword.end(), keyword.begin(),
                       [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    }
    return path;
}

Answer unknownPath(const Circumstances&) { return Query().path({kUnknown}).number().ask(); }

Answer unknownPathKeepsValue(const Circumstances&) {
    Query query;
    query.path({kUnknown}).number().ask();
    return query.isNumberUntouched();
}

Answer unknownPathWrongOffsets(const Circumstances&) {
    return Query().path({kUnknown}).offset(kWrongOffset).number().ask();
}

Answer emptyKeyword(const Circumstances&) { return Query().path({""}).number().ask(); }

Answer sevenKeywords(const Circumstances&) { return Query().path(Path(kMostKeywords + 1, kUnknown)).number().ask(); }

Answer read(const Circumstances& now) { return Query().path(settingOf(now)).number().ask(); }

Answer lowerCase(const Circumstances& now) {
    const Path path = inLowerCase(settingOf(now));
    if (path == now.setting) throw Unanswerable("SETTING has no upper-case letters");
    return Query().path(path).number().ask();
}

Answer otherType(const Circumstances& now) { return Query().path(settingOf(now)).param().ask(); }

Answer wrongOffsets(const Circumstances& now) {
    return Query().path(settingOf(now)).offset(kWrongOffset).number().ask();
}

Answer parent(const Circumstances& now) {
    Path path = settingOf(now);
    path.pop_back();
    if (path.empty()) throw Unanswerable("SETTING has only one keyword");
    return Query().path(path).number().ask();
}

Answer child(const Circumstances& now) {
    Path path = settingOf(now);
    path.emplace_back(kUnknown);
    if (path.size() > kMostKeywords) throw Unanswerable("SETTING has six keywords");
    return Query().path(path).number().ask();
}

Answer anyOrder(const Circumstances& now) {
    const Path& path = settingOf(now);
    Query query;
    query.number();
    for (std::size_t i = path.size(); i != 0; --i) query.keyword(i, path[i - 1]);
    return query.ask();
}

Answer unknownArgument(const Circumstances& now) {
    return Query().path(settingOf(now)).unknownArgument().number().ask();
}

Answer listIsKept(const Circumstances& now) {
    Query query;
    if (query.path(settingOf(now)).number().ask() != "Ok") throw Unanswerable("the host has no double at SETTING");
    return query.ask() == "Ok";
}

Answer whichOfTwoCounts(const Circumstances& now) {
    double first = kUntouched;
    double last = kUntouched;
    Query query;
    query.path(settingOf(now)).number(first).number(last).ask();
    if (first == kUntouched) return std::string(last == kUntouched ? "none" : "last");
    return std::string(last == kUntouched ? "first" : "both");
}

}  // namespace

std::vector<Question> styleQuestions() {
    using facts::Fact;
    return {{Fact::StyleUnknownPath, unknownPath},
            {Fact::StyleUnknownPathKeepsValue, unknownPathKeepsValue},
            {Fact::StyleUnknownPathWrongOffsets, unknownPathWrongOffsets},
            {Fact::StyleEmptyKeyword, emptyKeyword},
            {Fact::StyleSevenKeywords, sevenKeywords},
            {Fact::StyleSettingRead, read},
            {Fact::StyleSettingLowerCase, lowerCase},
            {Fact::StyleSettingOtherType, otherType},
            {Fact::StyleSettingWrongOffsets, wrongOffsets},
            {Fact::StyleSettingParent, parent},
            {Fact::StyleSettingChild, child},
            {Fact::StyleSettingAnyOrder, anyOrder},
            {Fact::StyleSettingUnknownArgument, unknownArgument},
            {Fact::StyleSettingListIsKept, listIsKept},
            {Fact::ListAppendSameNameTwiceCounts, whichOfTwoCounts}};
}

}  // namespace vexa::probe
