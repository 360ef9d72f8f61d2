#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace dataloader {

/// A file that is written whole or not at all: under a temporary name in the same folder first. Nothing in it is about
/// tables: take it to another add-on as it is.
///
///     AtomicFile out("out.csv");
///     out.write(text);      // as often as needed
///     out.commit();         // now out.csv is there; an older one is replaced
///
/// Without commit() the destructor removes what was written, and the file is as it was.
/// Errors: LoaderError "Cannot write FILE: " and the reason.
class AtomicFile {
public:
    explicit AtomicFile(std::string fileName);
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;
    ~AtomicFile();

    void write(std::string_view text);
    /// Call it once, last.
    void commit();

private:
    std::string m_fileName;
    std::string m_temporary;
    std::FILE* m_stream;
};

}  // namespace dataloader
