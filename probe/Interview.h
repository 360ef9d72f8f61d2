#pragma once

#include "probe/FactsFile.h"
#include "probe/questions/Circumstances.h"

namespace vexa::probe {

/// Asks the host all questions that have no answer in \p file, in the order of the table of facts, and writes the file.
///
/// Before it asks a question with a risk, it writes the file with the remark that the host ended at this question. So
/// if the host does end, the file says where; the next interview omits the question. \param isRisky whether to ask
/// questions with a risk. \throws std::runtime_error if the file cannot be written.
void interview(FactsFile& file, const Circumstances& circumstances, bool isRisky);

}  // namespace vexa::probe
