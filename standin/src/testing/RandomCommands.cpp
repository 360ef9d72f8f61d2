#include "vexastandin/RandomCommands.h"

#include <array>
#include <string_view>
#include <utility>

#include "vexastandin/Host.h"

namespace vexa::standin {
namespace {

constexpr std::array<std::string_view, 7> kAssigns = {"=", " = ", " =", "= ", " : ", "  =  ", " "};
constexpr std::string_view kDamagingBytes = "'\"\\=[]-, \t\n\x01\xff";
constexpr char kCaseBit = 'a' ^ 'A';

}  // namespace

RandomCommands::RandomCommands(std::uint64_t seed) : m_random(seed) {}

std::string RandomCommands::command(const std::vector<CommandForm>& forms) {
    const CommandForm& chosen = oneOf(forms);
    std::vector<std::pair<const OptionForm*, std::string>> options;
    for (const OptionForm& option : chosen.options) {
        if (chance(option.percent)) options.emplace_back(&option, valueOf(option));
    }
    if (chance(3) && !options.empty()) options.push_back(oneOf(options));
    const CommandForm& other = oneOf(forms);
    if (chance(3) && !other.options.empty()) {
        const OptionForm& foreign = oneOf(other.options);
        options.emplace_back(&foreign, valueOf(foreign));
    }
    // Not std::shuffle(), because its order differs between C++ libraries.
    for (std::size_t i = options.size(); i > 1; --i) std::swap(options[i - 1], options[below(i)]);

    std::string text = inAnyCase(chosen.word);
    for (const auto& [option, value] : options) text += ' ' + option->name + assign(chosen) + value;
    return chance(10) ? damaged(std::move(text)) : text;
}

void RandomCommands::setModes(Host& host) {
    host.setRecording(chance(70));
    host.setBatchMode(chance(15));
    host.setProcessingJournal(chance(15));
    host.setProcessingLayout(chance(15));
    host.releaseStop();
    if (chance(5)) host.pressStop();
    if (chance(10)) host.pressStopAtCheck(1 + below(10));
    if (chance(10)) host.pressStopAtPercent(static_cast<int>(below(101)));
}

std::size_t RandomCommands::below(std::size_t end) { return static_cast<std::size_t>(m_random() % end); }

bool RandomCommands::chance(std::size_t percent) { return below(100) < percent; }

const std::string& RandomCommands::valueOf(const OptionForm& option) {
    return !option.others.empty() && chance(8) ? oneOf(option.others) : oneOf(option.values);
}

std::string RandomCommands::assign(const CommandForm& command) {
    return chance(2) ? std::string(oneOf(kAssigns)) : command.assign;
}

std::string RandomCommands::inAnyCase(std::string word) {
    if (chance(10)) word[below(word.size())] ^= kCaseBit;
    return word;
}

std::string RandomCommands::damaged(std::string text) {
    const std::size_t at = below(text.size());
    switch (below(3)) {
        case 0: text.erase(at, 1); break;
        case 1: text.insert(at, 1, oneOf(kDamagingBytes)); break;
        default: text.resize(at); break;
    }
    return text;
}

}  // namespace vexa::standin
