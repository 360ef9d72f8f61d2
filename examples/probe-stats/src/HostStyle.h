#pragma once

#include <optional>

#include "Report.h"
#include "vexa/toolbox/Set.h"

namespace probestats {

/// What the user set in the host, as far as it concerns the output of this add-on.
struct HostStyle {
    ReportStyle report;
    std::optional<vexa::toolbox::Set> activeColumns;  ///< a column is shown as the field map of its number; none: all
};

/// Asks the host for these style values:
///
///     Text / NumberFormat / Precision     the significant digits of numbers, 1 to 17
///     Frame / Title / Text                the title
///     FieldMap / ActiveFieldMaps          the active columns
///
/// What the host does not have, or has of another kind or beyond these limits, stays at its default. None of it is an
/// error: the tables are the same, only less to the user's taste.
HostStyle hostStyle();

}  // namespace probestats
