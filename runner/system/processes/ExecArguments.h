#pragma once

#include <string>
#include <vector>

namespace vexa::runner {

/// Returns the arguments of a program as the functions of the exec family take them: pointers to \p words, and a null
/// pointer. They are valid as long as \p words does not change.
inline std::vector<char*> execArguments(const std::vector<std::string>& words) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (const std::string& word : words) pointers.push_back(const_cast<char*>(word.c_str()));  // exec only reads them
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace vexa::runner
