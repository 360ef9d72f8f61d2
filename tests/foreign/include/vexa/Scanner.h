#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "vexa/Export.h"

namespace vexa {

/// A scanner that does only what the library may rely on. A call whose result is not defined throws std::logic_error.
/// Only nextChar() returns any character instead; see foreign/ScannerCalls.h.
class FOREIGN_API Scanner {
public:
    Scanner();
    Scanner(const Scanner&) = delete;
    Scanner& operator=(const Scanner&) = delete;
    ~Scanner();

    void reset(const std::string& text);
    void skipWhitespace();
    bool hasNextChar() const;
    bool hasNextChar(char c) const;
    char nextChar();
    bool hasNextToken() const;
    std::string nextToken();
    bool hasNextToken(const std::string& delimiters) const;
    std::string nextToken(const std::string& delimiters);
    bool hasNextDoubleToken() const;
    double nextDoubleToken();
    bool hasNextInt64Token() const;
    int64_t nextInt64Token();

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace vexa
