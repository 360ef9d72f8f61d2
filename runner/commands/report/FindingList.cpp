#include "commands/report/FindingList.h"

#include <nlohmann/json.hpp>

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMostFirst = 300;
constexpr std::size_t kMostOfRule = 15;
constexpr std::size_t kMostKept = 500;
constexpr std::size_t kMostRules = 200;
constexpr std::size_t kTextBytes = 500000;
constexpr std::size_t kMostTextBytes = 600;

}  // namespace

FindingList::FindingList() : m_texts(kTextBytes, kMostTextBytes) {}

void FindingList::add(const TracedFinding& finding) {
    const Json facts = Json::parse(finding.facts);
    ++(facts.at("severity") == "error" ? m_errors : m_warnings);
    const bool isKnown = m_counts.count(finding.rule) != 0 || m_counts.size() < kMostRules;
    const std::size_t ofRule = m_counts[isKnown ? finding.rule : "others"]++;
    if (m_kept.size() >= kMostKept || (m_kept.size() >= kMostFirst && ofRule >= kMostOfRule)) return;
    Json kept = m_texts.cutAll(facts);
    kept["track"] = finding.track;
    kept["time"] = finding.time;
    m_kept.push_back(kept.dump());
}

Json FindingList::json() const {
    Json list = Json::array();
    for (const std::string& finding : m_kept) list.push_back(Json::parse(finding));
    return list;
}

}  // namespace vexa::runner
