/// \file
/// What the stand-in asks of texts that add-ons hand over.
#pragma once

namespace vexa::standin {

inline bool isNullOrEmpty(const char* text) { return text == nullptr || *text == '\0'; }

inline const char* orEmpty(const char* text) { return text == nullptr ? "" : text; }

}  // namespace vexa::standin
