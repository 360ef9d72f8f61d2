// Classes that two add-ons know from a header of their own.
#pragma once

#include <string>

#include "vexautilutil/MacroCommandError.h"

/// Shown to other shared objects.
class __attribute__((visibility("default"))) SharedError : public vexa::vexautilutil::MacroCommandError {
public:
    explicit SharedError(const std::string& message) : MacroCommandError(message) {}
};

/// Each shared object has its own.
class __attribute__((visibility("hidden"))) HiddenError : public vexa::vexautilutil::MacroCommandError {
public:
    explicit HiddenError(const std::string& message) : MacroCommandError(message) {}
};

/// What an add-on throws, by name.
struct Throw {
    const char* name;
    void (*make)();
};

/// What the add-on that throws exports: its throws, up to one without a name.
using Throws = const Throw*();
/// What the add-on that catches exports: runs `make` and writes down what was caught.
using Describe = void(void (*make)(), char* description, unsigned long size);
