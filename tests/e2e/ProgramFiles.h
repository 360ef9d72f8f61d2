#pragma once

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace vexa::e2e {

struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, FileCloser>;

[[noreturn]] inline void throwLastError(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

/// Returns a file for a stream of a program: unlike with a pipe, nobody has to read it while the program runs.
inline File unnamedFile(const std::string& content) {
    File file(std::tmpfile());
    if (!file) throwLastError("tmpfile");
    std::fwrite(content.data(), 1, content.size(), file.get());
    if (std::fflush(file.get()) != 0) throwLastError("tmpfile");
    std::rewind(file.get());
    return file;
}

/// Returns all that \p file holds.
inline std::string contentOf(const File& file) {
    std::string content;
    std::array<char, 4096> chunk{};
    std::rewind(file.get());
    while (const std::size_t count = std::fread(chunk.data(), 1, chunk.size(), file.get())) {
        content.append(chunk.data(), count);
    }
    return content;
}

/// Returns the pointers that exec takes. They stay valid as long as \p arguments.
inline std::vector<char*> argumentVector(const std::vector<std::string>& arguments) {
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace vexa::e2e
