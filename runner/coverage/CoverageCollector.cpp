#include "coverage/CoverageCollector.h"

#include <algorithm>
#include <utility>

#include "text/CommandWords.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kLongestName = 64;
constexpr std::string_view kRecord = "VexaUtilMacroRecordExtCommand";

// Commands may be any text; only names make a table that people can read.
bool isName(std::string_view word) {
    constexpr std::string_view kNameCharacters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_.-";
    return !word.empty() && word.size() <= kLongestName &&
           word.find_first_not_of(kNameCharacters) == std::string_view::npos;
}

// Returns true if `name` was not in `names` before.
bool addTo(Names& names, std::string_view name) {
    if (names.find(name) != names.end()) return false;
    names.emplace(name);
    return true;
}

}  // namespace

CoverageCollector::CoverageCollector(CoverageSetting setting) : m_setting(std::move(setting)) {
    m_events.hasTimeLimit = m_setting.hasTimeLimit;
    for (const standin::HostFunctionInfo& function : standin::hostFunctions()) {
        m_results.emplace(function.name, function.result);
    }
    noteRules();
}

void CoverageCollector::enter(std::string_view kind, const std::string& addOnId, const std::string& command,
                              std::size_t thread) {
    noteThread(thread);
    m_events.hasEntry = true;
    if (kind == "command") {
        m_entries.push_back(nameOf(addOnId, CommandWords(command).word));
        if (m_seen.commands.try_emplace(m_entries.back()).second) newsOf(m_entries.back());
        noteOptions(m_entries.back(), command);
    } else {
        m_entries.emplace_back(kind == "loading" ? kLoading : kUnloading);
    }
    noteRules();
}

void CoverageCollector::leave(bool succeeded) {
    if (m_entries.empty()) return;
    const bool isCommand = m_entries.back() != kLoading && m_entries.back() != kUnloading;
    if (isCommand) {
        noteEnd(succeeded ? kAccepted : kFailed);
        (succeeded ? m_events.hasAcceptedCommand : m_events.hasFailedCommand) = true;
        noteRules();
    }
    m_entries.pop_back();
}

void CoverageCollector::call(std::string_view function, std::size_t thread) {
    noteThread(thread);
    const bool isNew = answersOfCall(function) == nullptr;
    if (!isNew) return;
    const std::string command = m_entries.empty() ? kOutside : m_entries.back();
    m_seen.commands[command].calls.try_emplace(std::string(function));
    newsOf(command).calls.try_emplace(std::string(function));
    if (addTo(m_events.functions, function)) noteRules();
}

void CoverageCollector::answer(std::string_view function, const std::string& result) {
    const auto kind = m_results.find(function);
    Names* const answers = answersOfCall(function);
    if (kind == m_results.end() || answers == nullptr || answersOf(kind->second).empty()) return;
    const std::string answer = answerIn(result, kind->second);
    if (!addTo(*answers, answer)) return;
    newsOf(m_entries.empty() ? kOutside : m_entries.back()).calls[std::string(function)].insert(answer);
    if (!m_setting.isStrict || function != kRecord || answer != "1") return;
    m_events.isReplayed = true;
    noteRules();
}

Coverage CoverageCollector::takeNews() {
    m_hasNews = false;
    return std::exchange(m_news, {});
}

CommandCoverage& CoverageCollector::newsOf(const std::string& command) {
    m_hasNews = true;
    return m_news.commands[command];
}

// Returns null if the running command has not called the function before.
Names* CoverageCollector::answersOfCall(std::string_view function) {
    const auto command = m_seen.commands.find(m_entries.empty() ? kOutside : std::string_view(m_entries.back()));
    if (command == m_seen.commands.end()) return nullptr;
    const auto call = command->second.calls.find(function);
    return call == command->second.calls.end() ? nullptr : &call->second;
}

std::string CoverageCollector::nameOf(const std::string& addOnId, const std::string& word) const {
    const std::string name = addOnId + ' ' + word;
    const bool isKnown = !m_setting.known || m_setting.known->commands.count(name) != 0;
    return isName(word) && isKnown ? name : addOnId + ' ' + kUnnamed;
}

// Counts only options with a value, because other words may be the text of an add-on with a syntax of its own.
void CoverageCollector::noteOptions(const std::string& name, const std::string& text) {
    for (const auto& [option, value] : CommandWords(text).options) {
        if (value.empty() || !isName(option)) continue;
        if (m_setting.known) {
            const auto known = m_setting.known->commands.find(name);
            if (known == m_setting.known->commands.end() || known->second.options.count(option) == 0) continue;
        }
        if (!addTo(m_seen.commands[name].options, option)) continue;
        newsOf(name).options.insert(option);
    }
}

void CoverageCollector::noteEnd(const char* end) {
    if (!addTo(m_seen.commands[m_entries.back()].ends, end)) return;
    newsOf(m_entries.back()).ends.insert(end);
}

void CoverageCollector::noteThread(std::size_t thread) {
    if (m_events.hasSecondThread || !m_threads.insert(thread).second || m_threads.size() < 2) return;
    m_events.hasSecondThread = true;
    noteRules();
}

void CoverageCollector::noteRules() {
    for (const standin::Rule& rule : standin::rules()) {
        const auto& suppressed = m_setting.suppressed;
        const bool isSuppressed = std::find(suppressed.begin(), suppressed.end(), rule.name) != suppressed.end();
        if (isSuppressed || !isTouched(m_events, *standin::findTrigger(rule.name))) continue;
        if (!addTo(m_seen.rules, rule.name)) continue;
        m_news.rules.insert(rule.name);
        m_hasNews = true;
    }
}

}  // namespace vexa::runner
