#pragma once

#include <string>
#include <string_view>

namespace vexa::runner {

/// A text in a file without a name, for what reads only files that have a size.
class Spool {
public:
    /// \throws std::system_error when \p text cannot be kept.
    explicit Spool(std::string_view text);
    Spool(const Spool&) = delete;
    Spool& operator=(const Spool&) = delete;
    ~Spool();

    /// Where the text can be opened, as long as this lives.
    std::string path() const;

private:
    int m_descriptor;
};

}  // namespace vexa::runner
