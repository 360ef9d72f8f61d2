// An add-on that catches the exceptions of another add-on, and prints the type by which it caught each.
#include <cstdio>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>

#include "Errors.h"
#include "vexa/InvalidArgumentException.h"
#include "vexa/OutOfMemoryException.h"
#include "vexautilutil/InvalidInstructionsException.h"

namespace {

using namespace vexa;
using namespace vexa::vexautilutil;

std::string described(const std::exception_ptr& exception);

std::string named(const char* type, const std::exception& exception) {
    std::string text = std::string(type) + " \"" + exception.what() + '"';
    if (const auto* const around = dynamic_cast<const std::nested_exception*>(&exception)) {
        text += ", around " + described(around->nested_ptr());
    }
    if (const auto* const base = dynamic_cast<const ExceptionBase*>(&exception)) {
        if (base->cause()) text += ", because of " + described(base->cause());
    }
    return text;
}

// The messages of the standard library differ between its versions.
std::string described(const std::exception_ptr& exception) {
    try {
        std::rethrow_exception(exception);
    } catch (const SharedError& caught) {
        return named("SharedError", caught);
    } catch (const HiddenError& caught) {
        return named("HiddenError", caught);
    } catch (const MacroCommandError& caught) {
        return named("MacroCommandError", caught);
    } catch (const InvalidInstructionsException& caught) {
        return named("InvalidInstructionsException", caught);
    } catch (const InvalidArgumentException& caught) {
        return named("InvalidArgumentException", caught);
    } catch (const OutOfMemoryException& caught) {
        return named("OutOfMemoryException", caught);
    } catch (const ExceptionBase& caught) {
        return named("ExceptionBase", caught);
    } catch (const std::bad_alloc&) {
        return "std::bad_alloc";
    } catch (const std::out_of_range&) {
        return "std::out_of_range";
    } catch (const std::logic_error& caught) {
        return named("std::logic_error", caught);
    } catch (const std::exception& caught) {
        return named("std::exception", caught);
    } catch (...) {
        return "something else";
    }
}

// Catches by the type itself, not by a pointer to the exception.
std::string caughtFrom(void (*make)()) {
    try {
        make();
        return "nothing";
    } catch (const ExceptionBase&) {
        return described(std::current_exception());
    } catch (const std::exception&) {
        return described(std::current_exception()) + ", no ExceptionBase";
    } catch (int number) {
        return "the number " + std::to_string(number);
    }
}

}  // namespace

extern "C" __attribute__((visibility("default"))) Describe describe;
void describe(void (*make)(), char* description, unsigned long size) {
    std::snprintf(description, size, "%s", caughtFrom(make).c_str());
}
