// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>
#include <vector>

#include "vemora/platform/export.h"

namespace kuv::vemora {

/// Knows which object types a general name stands for ("vehicle": cars, trucks, buses). Shared with
/// the trigger manager for as long as that lives; must not call it back.
class VEMORA_API Meta_Type_Resolver {
 public:
  virtual ~Meta_Type_Resolver() = default;

  /// The object types that `types` stand for; a name that is no general one stands for itself. With
  /// an empty answer, nothing is searched for. Called on the thread of the pass, after its last
  /// write, for each detection record and object type. What it throws fails the pass.
  virtual std::vector<std::string> resolve(const std::vector<std::string>& types) = 0;
};

}  // namespace kuv::vemora
