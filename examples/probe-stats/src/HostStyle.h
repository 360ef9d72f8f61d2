#pragma once

#include <optional>

#include "Report.h"
#include "vexa/toolbox/Set.h"

namespace probestats {

/// The style settings of the host that this add-on uses for its output.
struct HostStyle {
    ReportStyle report;
    std::optional<vexa::toolbox::Set>
        activeColumns;  ///< the columns to show, by the numbers of field maps; empty: all columns
};

/// Reads these style values from the host:
///
///     Text / NumberFormat / Precision     the significant digits of numbers, 1 to 17
///     Frame / Title / Text                the title
///     FieldMap / ActiveFieldMaps          the active columns
///
/// A value that is missing, of another kind, or outside of these limits has its default. This is not an error, because
/// style changes only the form of the tables.
HostStyle hostStyle();

}  // namespace probestats
