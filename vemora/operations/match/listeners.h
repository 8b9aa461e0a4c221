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

  /// Whether any trigger searches for objects of the type.
  bool is_searched(const std::string& object_type) const {
    return searching_.count(object_type) != 0;
  }

  const Site_Records& records() const { return records_; }

 private:
  Ids detecting(std::uint64_t camera_id, const Ids& wanted) const;

  const Site_Records& records_;
  /// The triggers that search for a type: of objects that stand still, and of those in motion.
  std::map<std::string, std::array<Ids, 2>> searching_;
  Ids watching_motion_;
};

}  // namespace kuv::vemora::operations
