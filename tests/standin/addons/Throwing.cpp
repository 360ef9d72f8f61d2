// An add-on whose entry throws the exception THROWN.

#include <exception>
#include <stdexcept>

#include "vexa/AddOn.h"

namespace {

// Only this shared object has its type, so code that keeps it after the unloading crashes.
struct [[maybe_unused]] NoLicence : std::runtime_error {
    NoLicence() : std::runtime_error("no licence:\nask for one") {}
};

struct [[maybe_unused]] Speechless : std::exception {
    const char* what() const noexcept override { return nullptr; }
};

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) { throw THROWN; }
