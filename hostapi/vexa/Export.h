/// \file
/// Marks the names that the class libraries export.
#pragma once

/// Exports a class or function of the class libraries.
#if defined(__GNUC__)
#define VEXAHOSTLIBS_API __attribute__((visibility("default")))
#else
#define VEXAHOSTLIBS_API
#endif
