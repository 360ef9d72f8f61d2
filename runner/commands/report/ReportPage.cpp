#include "commands/report/ReportPage.h"

#include <nlohmann/json.hpp>
#include <string_view>

namespace vexa::runner {
namespace {

// The files of page/ as bytes: a string literal of this length is not portable.
constexpr char kPage[] = {
#include "report.html.inc"
};
constexpr char kStyle[] = {
#include "styles.inc"
};
constexpr char kScript[] = {
#include "scripts.inc"
};

template <std::size_t size>
std::string_view textOf(const char (&bytes)[size]) {
    return {bytes, size};
}

// Escapes texts that would end the script element.
std::string escapedForScript(const std::string& json) {
    std::string text;
    text.reserve(json.size());
    for (const char c : json) text += c == '<' ? std::string_view("\\u003c") : std::string_view(&c, 1);
    return text;
}

void replaceOnce(std::string& page, std::string_view placeholder, std::string_view text) {
    page.replace(page.find(placeholder), placeholder.size(), text);
}

}  // namespace

std::string reportPage(const nlohmann::ordered_json& data) {
    std::string page(textOf(kPage));
    replaceOnce(page, "/* STYLE */", textOf(kStyle));
    replaceOnce(page, "/* SCRIPT */", textOf(kScript));
    replaceOnce(page, "/* DATA */",
                escapedForScript(data.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace)));
    return page;
}

}  // namespace vexa::runner
