#pragma once

#include <memory>
#include <string>

#include "vexa/Export.h"

struct Set_s;

namespace vexa::toolbox {

/// A set of integers that has only the operations that the library may use. It counts their calls; see
/// foreign/SetCalls.h. It throws std::logic_error for a null handle. Its text form is that of this project's own Set,
/// without stepped ranges.
class FOREIGN_API Set {
public:
    Set();
    Set(const Set& other);
    explicit Set(Set_s* handle);
    Set& operator=(const Set&) = delete;
    virtual ~Set();

    virtual void clear();
    virtual void assign(std::string text);
    virtual std::string toString() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace vexa::toolbox
