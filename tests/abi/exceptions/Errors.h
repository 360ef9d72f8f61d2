// Exception classes that two add-ons share by this header.
#pragma once

#include <string>

#include "vexautilutil/MacroCommandError.h"

/// Visible to other shared objects.
class __attribute__((visibility("default"))) SharedError : public vexa::vexautilutil::MacroCommandError {
public:
    explicit SharedError(const std::string& message) : MacroCommandError(message) {}
};

/// Hidden, so each shared object has its own type information.
class __attribute__((visibility("hidden"))) HiddenError : public vexa::vexautilutil::MacroCommandError {
public:
    explicit HiddenError(const std::string& message) : MacroCommandError(message) {}
};

/// A function that throws, and the name of its exception.
struct Throw {
    const char* name;
    void (*make)();
};

/// The throwing add-on exports this function. It returns a list that ends with an entry without a name.
using Throws = const Throw*();
/// The catching add-on exports this function. It calls `make` and describes the exception that it caught.
using Describe = void(void (*make)(), char* description, unsigned long size);
