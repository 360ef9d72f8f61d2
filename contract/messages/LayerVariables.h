/// \file
/// The environment variables by which a program passes the settings of the layer to the processes that it starts.
#pragma once

namespace vexa::standin {

/// The path of the socket that gets the messages. Without it the layer does nothing.
inline constexpr const char* kSocketVariable = "VEXA_LAYER_SOCKET";
/// The name of the function that makes a shared object an add-on.
inline constexpr const char* kEntryVariable = "VEXA_LAYER_ENTRY";
/// Is set if each call is to be sent.
inline constexpr const char* kTraceVariable = "VEXA_LAYER_TRACE";

inline constexpr const char* kUsualEntry = "vexaAddOn";

}  // namespace vexa::standin
