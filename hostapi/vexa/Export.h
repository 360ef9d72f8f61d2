/// \file
/// Visibility of the in-house class libraries.
#pragma once

/// Marks what the in-house class libraries export.
#if defined(__GNUC__)
#define VEXAHOSTLIBS_API __attribute__((visibility("default")))
#else
#define VEXAHOSTLIBS_API
#endif
