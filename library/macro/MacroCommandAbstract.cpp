#include "vexautilutil/MacroCommandAbstract.h"

#include "vexautilutil/MacroCommandError.h"

namespace vexa::vexautilutil {
namespace {

constexpr char DROPPED_delimiters[] = "";
constexpr char KEPT_delimiters[] = " =\"'-,[]";
constexpr std::size_t kUsualOption = 24;  // characters

}  // namespace

MacroCommandAbstract::MacroCommandAbstract(const std::string& name) : m_name(name) {}

MacroCommandAbstract::~MacroCommandAbstract() = default;

void MacroCommandAbstract::forEachOption(MacroOptionPerformerInterface& performer) {
    for (const auto& [name, option] : m_options) option->perform(performer);
}

std::string MacroCommandAbstract::name() const { return m_name; }

std::string MacroCommandAbstract::toString() const {
    std::string text;
    text.reserve(m_name.size() + m_options.size() * kUsualOption);
    text += m_name;
    for (const auto& [name, option] : m_options) {
        if (option->isDefaultValue()) continue;
        text += ' ';
        text += option->toString();
    }
    return text;
}

void MacroCommandAbstract::addOption(std::shared_ptr<MacroOptionInterface> option) {
    const bool added = m_options.try_emplace(option->name(), option).second;
    if (!added) throw MacroCommandError("Duplicate macro command option " + option->name());
}

MacroCommandAbstract::OptionMap& MacroCommandAbstract::options() { return m_options; }

MacroTokenizer MacroCommandAbstract::tokenize(const std::string& text) {
    return MacroTokenizer(text, MacroTokenSeparator(DROPPED_delimiters, KEPT_delimiters, boost::drop_empty_tokens));
}

}  // namespace vexa::vexautilutil
