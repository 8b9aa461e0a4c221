#pragma once

#include <string>

namespace kuv::vemora {

/// Rejects the document: throws Backend_Error<std::runtime_error> with exactly this text.
[[noreturn]] void raise_validation_error(const std::string& message);

/// One rule of a document. Its text is a literal, so that a rule that is kept costs nothing.
inline void require(bool condition, const char* message) {
  if (!condition) {
    raise_validation_error(message);
  }
}

}  // namespace kuv::vemora
