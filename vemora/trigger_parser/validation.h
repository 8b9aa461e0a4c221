#pragma once

#include <string>

namespace kuv::vemora {

/// Rejects the document: throws Backend_Error<std::runtime_error> with exactly this text.
[[noreturn]] void raise_validation_error(const std::string& message);

}  // namespace kuv::vemora
