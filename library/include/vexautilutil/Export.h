/// \file
/// Marks the names that the library exports.
#pragma once

/// Exports a class or function of the library. Names without it are hidden.
#if defined(__GNUC__)
#define VEXAUTILUTIL_API __attribute__((visibility("default")))
#else
#define VEXAUTILUTIL_API
#endif
