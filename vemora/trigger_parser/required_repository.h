// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>

#include "vemora/platform/errors/required.h"
#include "vemora/platform/repositories/repository.h"

namespace kuv::vemora {

/// The parser's repository, which may be null until a document makes the parser look something up.
inline Repository& required_repository(const std::shared_ptr<Repository>& repository) {
  return required(repository, "The trigger parser was constructed without a repository");
}

}  // namespace kuv::vemora
