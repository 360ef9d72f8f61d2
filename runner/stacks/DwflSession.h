#pragma once

#include <elfutils/libdwfl.h>

#include <memory>

namespace vexa::runner {

/// The parts that all sessions of libdwfl share.
struct DwflSession {
    struct End {
        void operator()(Dwfl* session) const { dwfl_end(session); }
    };
    using Owner = std::unique_ptr<Dwfl, End>;

    /// Null: libdwfl searches debug information in the usual folders. It takes a pointer to the path.
    static inline char* debugPath = nullptr;
};

}  // namespace vexa::runner
