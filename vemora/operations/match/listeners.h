// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <array>
#include <map>
#include <string>

#include "vemora/operations/match/event.h"
#include "vemora/operations/site/site_records.h"
#include "vemora/platform/services/meta_type_resolver.h"

namespace kuv::vemora::operations {

/// The triggers that the records of a site, which must outlive it, let be told of events.
class Listeners {
 public:
  using Ids = Site_Records::Ids;

  Listeners(const Site_Records& records, Meta_Type_Resolver& resolver);

  /// Ascending.
  Ids told_of(const Event& event) const;

  /// False where it is told to nobody, as is seen at once.
  bool may_be_told_of(const Event& event) const;

 private:
  Ids detecting(std::uint64_t camera_id, const Ids& wanted) const;

  const Site_Records& records_;
  /// The triggers that search for a type: of objects that stand still, and of those in motion.
  std::map<std::string, std::array<Ids, 2>> searching_;
  Ids watching_motion_;
};

}  // namespace kuv::vemora::operations
