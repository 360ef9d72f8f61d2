#pragma once

#include <stdexcept>

namespace dataloader {

/// Reports why a command failed. The message is one line for the user.
class LoaderError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reports a mistake in one row of a file. The reader of the file adds the place.
class RowError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace dataloader
