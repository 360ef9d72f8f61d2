/// \file
/// Visibility of the library's classes and functions.
#pragma once

/// Marks what the library exports; all else stays hidden.
#if defined(__GNUC__)
#define VEXAUTILUTIL_API __attribute__((visibility("default")))
#else
#define VEXAUTILUTIL_API
#endif
