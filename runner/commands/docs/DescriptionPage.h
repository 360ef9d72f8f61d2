#pragma once

#include <string>

#include "formats/CommandDescription.h"

namespace vexa::runner {

/// Returns a page about the commands of an add-on, as Markdown: for each command its purpose, form, options and
/// examples.
std::string markdownPage(const AddOnDescription& addOn);

/// Returns the same page as HTML that needs no other file.
std::string htmlPage(const AddOnDescription& addOn);

/// Returns one table with all commands and options, as Markdown, for a page that has other text.
std::string markdownTable(const AddOnDescription& addOn);

}  // namespace vexa::runner
