// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>

#include "vemora/platform/export.h"

namespace kuv::vemora {

struct camera;
struct trigger;

namespace ODB_Utils {

/// Orders shared records by identity: by their ids as unsigned numbers, never by their addresses,
/// so that two loaded copies of one record are one element. A null pointer comes first.
struct VEMORA_API Record_Comparator {
  /// Whether the one comes before the other.
  ///@{
  bool operator()(const std::shared_ptr<camera>& left, const std::shared_ptr<camera>& right) const;
  bool operator()(const std::shared_ptr<trigger>& left,
                  const std::shared_ptr<trigger>& right) const;
  ///@}
};

}  // namespace ODB_Utils
}  // namespace kuv::vemora
