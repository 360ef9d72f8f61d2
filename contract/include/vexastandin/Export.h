/// \file
/// Marks the C++ names that the stand-in host exports.
#pragma once

/// Exports a class or function of the stand-in host. It also exports the host's C functions.
#if defined(__GNUC__)
#define VEXASTANDIN_API __attribute__((visibility("default")))
#else
#define VEXASTANDIN_API
#endif
