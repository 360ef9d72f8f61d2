#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace dataloader {

/// Writes a complete file or none: first under a temporary name in the same folder. The class does not depend on
/// tables, so you can copy it unchanged to another add-on.
///
///     AtomicFile out("out.csv");
///     out.write(text);      // as often as needed
///     out.commit();         // now out.csv exists; an older file is replaced
///
/// Without commit(), the destructor removes the new text, and the old file is unchanged.
/// Errors: LoaderError "Cannot write FILE: " and the reason.
class AtomicFile {
public:
    explicit AtomicFile(std::string fileName);
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;
    ~AtomicFile();

    void write(std::string_view text);
    /// Call it once, as the last call.
    void commit();

private:
    std::string m_fileName;
    std::string m_temporary;
    std::FILE* m_stream;
};

}  // namespace dataloader
