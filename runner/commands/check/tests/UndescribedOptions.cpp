#include "commands/check/tests/UndescribedOptions.h"

#include <algorithm>
#include <memory>
#include <set>
#include <string_view>

#include "language/Descriptions.h"
#include "language/ValueText.h"
#include "system/files/WholeFile.h"

namespace vexa::runner {
namespace {

constexpr const char* kInventedName = "VEXACHECK";
constexpr std::size_t kMostWords = 4000;
constexpr std::size_t kShortest = 2;
constexpr std::size_t kLongest = 32;
constexpr std::size_t kWordsOfASession = 200;  // the host keeps the calls of a session

// Values of every type. The first one is wrong for all types, so most options are found without an effect.
constexpr const char* kValues[] = {"?", "1", "TRUE", "'x'", "[1]"};

bool isCapital(char c) { return c >= 'A' && c <= 'Z'; }

// Returns the words in capitals and digits in the bytes of a file.
std::set<std::string> wordsIn(std::string_view bytes) {
    const auto continues = [](char c) { return isCapital(c) || (c >= '0' && c <= '9') || c == '_'; };
    std::set<std::string> words;
    for (std::size_t at = 0; at < bytes.size() && words.size() < kMostWords;) {
        if (!isCapital(bytes[at])) {
            ++at;
            continue;
        }
        const std::size_t begin = at;
        while (at < bytes.size() && continues(bytes[at])) ++at;
        if (at - begin >= kShortest && at - begin <= kLongest) words.emplace(bytes.substr(begin, at - begin));
    }
    return words;
}

std::string replaced(std::string text, const std::string& name) {
    for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name))
        text.replace(at, name.size(), "\1");
    return text;
}

class OptionSearch {
public:
    OptionSearch(Trial& trial, const AddOnDescription& addOn, const CommandDescription& command,
                 const std::vector<MacroCommand>& before, const std::string& least)
        : m_trial(trial), m_addOn(addOn), m_command(command), m_before(before), m_least(least) {}

    std::vector<std::string> run() {
        std::vector<std::string> found;
        if (isKnown(kInventedName)) return found;  // the messages say nothing about the name
        for (const std::string& word : wordsIn(readWholeFile(m_trial.subject().addOn()))) {
            if (m_trial.isTimeUp()) break;
            if (findOption(m_command, word) == nullptr && isKnown(word)) found.push_back(word);
        }
        return found;
    }

private:
    bool isKnown(const std::string& name) {
        std::set<std::string> messages;
        for (const char* const value : kValues) {
            const std::string text = m_least + ' ' + assignment(name, value, m_command.kind);
            const standin::CommandResult result = session().run({"", m_addOn.addOn, text});
            if (result.accepted) {
                m_session.reset();  // its state has changed
                return true;
            }
            messages.insert(replaced(result.error, name));
        }
        return messages.size() > 1;
    }

    CheckedSession& session() {
        if (m_session && ++m_runs < kWordsOfASession) return *m_session;
        m_runs = 0;
        m_session.reset();  // before the next one, because one host at a time can be current
        m_session = std::make_unique<CheckedSession>(m_trial);
        for (const MacroCommand& step : m_before) m_session->runWell(step);
        m_trial.nowTrying("words of the add-on's file as options of " + m_command.name);
        return *m_session;
    }

    Trial& m_trial;
    const AddOnDescription& m_addOn;
    const CommandDescription& m_command;
    const std::vector<MacroCommand>& m_before;
    const std::string& m_least;
    std::unique_ptr<CheckedSession> m_session;
    std::size_t m_runs = 0;
};

}  // namespace

std::vector<std::string> undescribedOptions(Trial& trial, const AddOnDescription& addOn,
                                            const CommandDescription& command, const std::vector<MacroCommand>& before,
                                            const std::string& least) {
    return OptionSearch(trial, addOn, command, before, least).run();
}

}  // namespace vexa::runner
