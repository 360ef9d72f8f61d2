#include "commands/check/tests/UndescribedOptions.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <string_view>
#include <utility>

#include "language/Descriptions.h"
#include "language/ValueText.h"
#include "system/files/WholeFile.h"
#include "text/StartsWith.h"

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

// The commands that use a word. An add-on that does not know the word gives the same message for all of them.
using TextsOf = std::function<std::vector<std::string>(const std::string& word)>;

class WordSearch {
public:
    WordSearch(Trial& trial, const AddOnDescription& addOn, const std::vector<MacroCommand>& before, std::string use,
               TextsOf textsOf)
        : m_trial(trial), m_addOn(addOn), m_before(before), m_use(std::move(use)), m_textsOf(std::move(textsOf)) {}

    std::vector<std::string> wordsUnlike(const std::function<bool(const std::string& word)>& isDescribed) {
        std::vector<std::string> found;
        if (isKnown(kInventedName)) return found;  // the messages say nothing about the word
        for (const std::string& word : wordsIn(readWholeFile(m_trial.subject().addOn()))) {
            if (m_trial.isTimeUp()) break;
            if (!isDescribed(word) && isKnown(word)) found.push_back(word);
        }
        return found;
    }

private:
    bool isKnown(const std::string& word) {
        std::set<std::string> messages;
        for (const std::string& text : m_textsOf(word)) {
            const standin::CommandResult result = session().run({"", m_addOn.addOn, text});
            if (result.accepted) {
                m_session.reset();  // its state has changed
                return true;
            }
            messages.insert(replaced(result.error, word));
        }
        return messages.size() > 1;
    }

    CheckedSession& session() {
        if (m_session && ++m_runs < kWordsOfASession) return *m_session;
        m_runs = 0;
        m_session.reset();  // before the next one, because one host at a time can be current
        m_session = std::make_unique<CheckedSession>(m_trial);
        for (const MacroCommand& step : m_before) m_session->runWell(step);
        m_trial.nowTrying("words of the add-on's file as " + m_use);
        return *m_session;
    }

    Trial& m_trial;
    const AddOnDescription& m_addOn;
    const std::vector<MacroCommand>& m_before;
    const std::string m_use;
    const TextsOf m_textsOf;
    std::unique_ptr<CheckedSession> m_session;
    std::size_t m_runs = 0;
};

}  // namespace

std::vector<std::string> undescribedOptions(Trial& trial, const AddOnDescription& addOn,
                                            const CommandDescription& command, const std::vector<MacroCommand>& before,
                                            const std::string& least) {
    const auto textsOf = [&](const std::string& word) {
        std::vector<std::string> texts;
        for (const char* const value : kValues) texts.push_back(least + ' ' + assignment(word, value, command.kind));
        return texts;
    };
    return WordSearch(trial, addOn, before, "options of " + command.name, textsOf).wordsUnlike([&](const auto& word) {
        return findOption(command, word) != nullptr;
    });
}

std::vector<std::string> undescribedCommands(Trial& trial, const AddOnDescription& addOn) {
    const std::vector<MacroCommand> nothingBefore;
    const auto textsOf = [](const std::string& word) {
        return std::vector<std::string>{word + " ?", word + " ? = ?", word + " ?=?", word};
    };
    // Some add-ons compare only the start of a command.
    const auto isDescribed = [&](const std::string& word) {
        return std::any_of(addOn.commands.begin(), addOn.commands.end(),
                           [&](const CommandDescription& command) { return startsWith(word, command.name); });
    };
    return WordSearch(trial, addOn, nothingBefore, "commands", textsOf).wordsUnlike(isDescribed);
}

}  // namespace vexa::runner
