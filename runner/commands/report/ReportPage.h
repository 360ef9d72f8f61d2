#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace vexa::runner {

/// Makes an HTML page that shows \p data, from PageData. It needs no other file and no network.
std::string reportPage(const nlohmann::ordered_json& data);

}  // namespace vexa::runner
