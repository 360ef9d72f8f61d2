#pragma once

#include <string>
#include <vector>

#include "vexa/VexaUtil.h"
#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

/// The type of a style setting's value.
enum ResultType_e {
    ResultType_Double = 0,   ///< a floating-point number
    ResultType_Integer = 1,  ///< an integer
    ResultType_Set = 2,      ///< a set of indices, as vexa::toolbox::Set writes it
    ResultType_String = 3,   ///< a text
    ResultType_None = 4      ///< no value: the host refused the query
};

/// Queries the host for the value of one style setting, and returns the value as text.
///
///     ResultType_e type;
///     GetValueReturnCode_e code;
///     std::string text;
///     std::vector<std::string> path = {"FieldMap", "Mesh", "LineThickness"};
///     getValueAsString(path, 1, 0, type, code, text);
///     if (code == GetValueReturnCode_Ok) show(text);    // for example "0.4"
///
/// The function first asks the host for a floating-point number. If the host answers that the value has another type,
/// the function asks again. The last keyword of the path, in any letter case, then decides the type:
///
///     UseClipPlanes, ActiveFieldMaps                                           -> a set, "[1-3,5]"
///     ExportFName, Name, RedChannelLabel, GreenChannelLabel, BlueChannelLabel,
///     ASCIIChar, Text, ExtendedName, ExtendedSettings, DynamicLabelName,
///     PositivePrefix, PositiveSuffix, NegativePrefix, NegativeSuffix,
///     ZeroPrefix, ZeroSuffix                                                   -> a text, unchanged
///     any other                                                                -> an integer, "-3"
///
/// A floating-point number has six significant digits: 0.5, 1, 0.123457, 1.23457e+06. Its format follows the global C++
/// locale. An integer has only digits and a minus sign, in every locale.
///
/// \param path       the style keywords, outermost first, at least one. The host gets the first six. The last keyword
///                   decides the type, even if it is not one of these six.
/// \param offset1    the query's first index, passed to the host unchanged; for example a field map.
/// \param offset2    the query's second index, passed to the host unchanged.
/// \param resultType receives the type; ResultType_None if the host refused the first query.
/// \param returnCode receives the host's answer to the last query; GetValueReturnCode_NotAvailable if the host had no
///                   memory for the query.
/// \param result     receives the value; unchanged if \p resultType is ResultType_None. A null text becomes an empty
///                   one.
/// \warning Check \p returnCode first. If the host refuses the second query, \p resultType still names a type, and
///          \p result is "0", "[]" or empty.
/// \throws std::out_of_range if \p path is empty. The host is then not called.
/// \throws std::bad_alloc if memory for the text runs out.
/// \warning After `std::bad_alloc`, or an exception from a host function, the host's argument list is not freed.
VEXAUTILUTIL_API void getValueAsString(std::vector<std::string>& path, long offset1, long offset2,
                                       ResultType_e& resultType, GetValueReturnCode_e& returnCode, std::string& result);

}  // namespace vexa::vexautilutil
