#pragma once

#include <stdexcept>

namespace dataloader {

/// What a command fails with. The message is one line, fit to show a user.
class LoaderError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What is wrong in one row of a file. Where it is, knows who reads the file.
class RowError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace dataloader
