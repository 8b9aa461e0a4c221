#pragma once

#include <json/value.h>

#include <string>

namespace kuv::vemora {

/// Rejects the document: throws Backend_Error<std::runtime_error> with exactly this text.
[[noreturn]] void raise_validation_error(const std::string& message);

/// Rejects the document unless the condition holds. The text is only read when it does not.
inline void require(bool condition, const char* message) {
  if (!condition) {
    raise_validation_error(message);
  }
}

}  // namespace kuv::vemora
