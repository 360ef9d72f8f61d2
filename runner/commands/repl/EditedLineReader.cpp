// For a program that is built with readline.

#include <readline/history.h>
#include <readline/readline.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <memory>
#include <system_error>
#include <utility>

#include "commands/repl/LineReader.h"
#include "language/Completion.h"
#include "system/processes/Signals.h"
#include "terminal/Console.h"
#include "terminal/Terminal.h"
#include "text/StartsWith.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

constexpr int kMostKept = 1000;

// Global, because readline calls plain functions without an argument for an object.
std::vector<std::string> theFirstWords;  // for the first word of a line
std::vector<std::string> theWords;       // for the current attempt
const Descriptions* theDescriptions = nullptr;
volatile std::sig_atomic_t isGivenUp = 0;

// Returns the path of the history file; empty if there is no folder for it.
std::string historyFile() {
    const std::string_view home = environment("HOME");
    const std::string_view state = environment("XDG_STATE_HOME");
    if (!state.empty()) return fs::path(state) / kProgramName / "history";
    return home.empty() ? "" : (fs::path(home) / ".local/state" / kProgramName / "history").string();
}

// Returns the next word; null after the last one. A `state` of 0 starts again.
char* nextWord(const char*, int state) {
    static std::size_t next = 0;
    if (state == 0) next = 0;
    return next < theWords.size() ? strdup(theWords[next++].c_str()) : nullptr;
}

void takeFirstWords(std::string_view start) {
    theWords.clear();
    std::copy_if(theFirstWords.begin(), theFirstWords.end(), std::back_inserter(theWords),
                 [&](const std::string& word) { return startsWith(word, start); });
}

// Returns the number of characters before the command that a help is about; 0 if the line asks for no help.
std::size_t lengthOfHelp(std::string_view line) {
    for (const std::string_view help : {":help ", "help "}) {
        if (startsWith(line, help)) return help.size();
    }
    return 0;
}

// A help is about an id, or an id and a word.
bool hasThirdWord(std::string_view line) {
    const std::size_t second = line.find_first_not_of(' ', line.find(' '));
    return second != std::string_view::npos && line.find(' ', second) != std::string_view::npos;
}

// Replaces the words by those that complete \p line up to its end; \p start is the begin of its last part. Returns
// false if there are none.
bool describeWords(std::string_view line, std::size_t start) {
    const Completion completion = completionAt(line, *theDescriptions);
    if (completion.begin > start) return false;
    theWords.clear();
    // readline replaces only what follows the last blank, quote or equals sign.
    for (const std::string& text : completion.texts) {
        if (text.size() > start - completion.begin) theWords.push_back(text.substr(start - completion.begin));
    }
    rl_sort_completion_matches = 0;  // the order of the description says what is typed first
    const bool endsOpen = !theWords.empty() && std::strchr("= ", theWords.front().back()) != nullptr;
    rl_completion_suppress_append = endsOpen ? 1 : 0;
    return !theWords.empty();
}

void takeHelpWords(std::string_view line, std::size_t start) {
    if (hasThirdWord(line) || !describeWords(line, start)) theWords.clear();
}

// Returns null to let readline complete file names.
char** complete(const char* text, int start, int end) {
    rl_sort_completion_matches = 1;
    const std::string_view line(rl_line_buffer, static_cast<std::size_t>(end));
    const std::size_t skipped = lengthOfHelp(line);
    const std::size_t begin = static_cast<std::size_t>(start) - skipped;
    if (begin == 0) {
        takeFirstWords(text);
    } else if (skipped != 0) {
        takeHelpWords(line.substr(skipped), begin);
    } else if (!describeWords(line, begin)) {
        return nullptr;
    }
    rl_attempted_completion_over = 1;
    return rl_completion_matches(text, nextWord);
}

int giveUpLine() {
    if (isGivenUp == 0) return 0;
    isGivenUp = 0;
    rl_replace_line("", 0);
    rl_crlf();
    rl_on_new_line();
    rl_redisplay();
    return 0;
}

}  // namespace

LineReader::LineReader() : m_isEditing(isTerminal(STDIN_FILENO) && isTerminal(STDOUT_FILENO)) {
    if (!m_isEditing) return;
    rl_readline_name = kProgramName;
    rl_attempted_completion_function = complete;
    rl_event_hook =
        giveUpLine;  // called repeatedly, because a signal may arrive just before readline waits for the keyboard
    using_history();
    stifle_history(kMostKept);
    read_history(historyFile().c_str());
}

LineReader::~LineReader() {
    const std::string file = historyFile();
    if (!m_isEditing || file.empty()) return;
    std::error_code ignored;
    fs::create_directories(fs::path(file).parent_path(), ignored);
    write_history(file.c_str());
}

std::optional<std::string> LineReader::next(std::vector<std::string> words, const Descriptions& descriptions) const {
    std::fflush(stdout);
    if (!m_isEditing) return plainLine();
    theFirstWords = std::move(words);
    theDescriptions = &descriptions;
    const SignalHandler givesUp(SIGINT, [](int) { isGivenUp = 1; });
    const std::unique_ptr<char, void (*)(void*)> line(readline("> "), std::free);
    if (!line) return std::nullopt;
    if (*line != '\0') add_history(line.get());
    return std::string(line.get());
}

}  // namespace vexa::runner
