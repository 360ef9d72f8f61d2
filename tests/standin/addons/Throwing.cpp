// An add-on whose entry throws the exception THROWN.

#include <stdexcept>

#include "vexa/AddOn.h"

namespace {

// Known to this shared object alone: whoever keeps it beyond the unloading crashes.
struct [[maybe_unused]] NoLicence : std::runtime_error {
    NoLicence() : std::runtime_error("no licence:\nask for one") {}
};

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) { throw THROWN; }
