// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>

namespace kuv::vemora {

/// Rejects the document: throws Backend_Error<std::runtime_error> with exactly this text.
[[noreturn]] void raise_validation_error(const std::string& message);

}  // namespace kuv::vemora
