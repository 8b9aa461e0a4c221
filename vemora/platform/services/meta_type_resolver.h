#pragma once

#include <string>
#include <vector>

#include "vemora/platform/export.h"

namespace kuv::vemora {

/// Knows which object types a general name stands for ("vehicle": cars, trucks, buses).
class VEMORA_API Meta_Type_Resolver {
 public:
  virtual ~Meta_Type_Resolver() = default;

  /// The object types that `types` stand for; a name that is no general one stands for itself.
  virtual std::vector<std::string> resolve(const std::vector<std::string>& types) = 0;
};

}  // namespace kuv::vemora
