#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vexa::runner {

/// Reads the texts among the arguments of a host call in a trace. A null pointer has no text.
///
///     textArguments(R"("ONE", "SAY \"hi\"")")  ->  ONE | SAY "hi"
///     textArguments(R"("ONE", null)")          ->  ONE | nothing
std::vector<std::optional<std::string>> textArguments(const std::string& arguments);

}  // namespace vexa::runner
