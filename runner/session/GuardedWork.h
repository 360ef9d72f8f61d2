#pragma once

#include <functional>

namespace vexa::runner {

/// Calls \p work, and tells in one line what escapes from it.
/// \return what \p work returns; when something escapes, the status of wrong input.
/// \throws EndedBySignal when \p work does.
int guarded(const std::function<int()>& work);

}  // namespace vexa::runner
