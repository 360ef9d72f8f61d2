#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vexa::runner {

/// The texts among the arguments of a host call as a trace has them, null ones as nothing.
///
///     textArguments(R"("ONE", "SAY \"hi\"")")  ->  ONE | SAY "hi"
///     textArguments(R"("ONE", null)")          ->  ONE | nothing
std::vector<std::optional<std::string>> textArguments(const std::string& arguments);

}  // namespace vexa::runner
