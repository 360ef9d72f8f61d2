#pragma once

#include <CLI/CLI.hpp>
#include <cstddef>
#include <string>

namespace vexa::runner {

/// Lays out the help in lines of at most \p width columns, as far as its words allow.
///
/// In a footer, lines that begin with a blank are a table or code, and code stays as it is; all others that follow one
/// another are a paragraph.
class HelpFormatter : public CLI::Formatter {
public:
    explicit HelpFormatter(std::size_t width);

    std::string make_option_desc(const CLI::Option* option) const override;
    std::string make_footer(const CLI::App* app) const override;

private:
    std::size_t m_width;
};

}  // namespace vexa::runner
