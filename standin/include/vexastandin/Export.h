/// \file
/// Visibility of the stand-in host's control interface.
#pragma once

/// Marks what the stand-in host exports, beside the host's C functions.
#if defined(__GNUC__)
#define VEXASTANDIN_API __attribute__((visibility("default")))
#else
#define VEXASTANDIN_API
#endif
