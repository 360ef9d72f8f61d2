#pragma once

#include <string>
#include <vector>

#include "vexa/VexaUtil.h"
#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

/// The kind of value that a style setting has.
enum ResultType_e {
    ResultType_Double = 0,   ///< a floating-point number
    ResultType_Integer = 1,  ///< an integer
    ResultType_Set = 2,      ///< a set of indices, as vexa::toolbox::Set writes it
    ResultType_String = 3,   ///< a text
    ResultType_None = 4      ///< no value: the host refused the query
};

/// Asks the host for the value of one style setting, and returns it as text.
///
///     ResultType_e type;
///     GetValueReturnCode_e code;
///     std::string text;
///     std::vector<std::string> path = {"FieldMap", "Mesh", "LineThickness"};
///     getValueAsString(path, 1, 0, type, code, text);
///     if (code == GetValueReturnCode_Ok) show(text);    // for example "0.4"
///
/// The host is first asked for a floating-point number. Where the value is of another type it is asked again, and the
/// last keyword of the path, in any letter case, says what came:
///
///     UseClipPlanes, ActiveFieldMaps                                           -> a set, "[1-3,5]"
///     ExportFName, Name, RedChannelLabel, GreenChannelLabel, BlueChannelLabel,
///     ASCIIChar, Text, ExtendedName, ExtendedSettings, DynamicLabelName,
///     PositivePrefix, PositiveSuffix, NegativePrefix, NegativeSuffix,
///     ZeroPrefix, ZeroSuffix                                                   -> a text, as it is
///     any other                                                                -> an integer, "-3"
///
/// A floating-point number is written to six significant digits: 0.5, 1, 0.123457, 1.23457e+06. It follows the global
/// C++ locale; integers are always plain digits.
///
/// \param path       the style keywords, outermost first, at least one. The host gets the first six; the last one
///                   decides about the kind, also when it lies beyond.
/// \param offset1    the query's first index, passed through, for example a field map.
/// \param offset2    the query's second index, passed through.
/// \param resultType receives the kind; ResultType_None when the host refused the first question.
/// \param returnCode receives the host's answer to the last question asked; GetValueReturnCode_NotAvailable when
///                   the host had no memory for the question.
/// \param result     receives the value; untouched when \p resultType is ResultType_None. A null text is empty.
/// \warning The answer to the second question is passed on, not tested: when it is a refusal, \p result is "0", "[]"
///          or empty, and \p resultType as if it were a value. Look at \p returnCode first.
/// \throws std::out_of_range when \p path is empty, before the host is asked.
/// \throws std::bad_alloc when memory runs out while the text is made.
/// \warning The host's argument list is then not released, nor when a host function throws.
VEXAUTILUTIL_API void getValueAsString(std::vector<std::string>& path, long offset1, long offset2,
                                       ResultType_e& resultType, GetValueReturnCode_e& returnCode, std::string& result);

}  // namespace vexa::vexautilutil
