// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_parser/validation.h"

#include <stdexcept>

#include "vemora/platform/errors/error_codes.h"
#include "vemora/platform/errors/vemora_error.h"

namespace kuv::vemora {

void raise_validation_error(const std::string& message) {
  throw Backend_Error<std::runtime_error>(message, error_codes::invalid_document);
}

}  // namespace kuv::vemora
