// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "vemora/embedded_server/persistent/index/capability_store.h"
#include "vemora/embedded_server/persistent/index/id_hash.h"
#include "vemora/embedded_server/persistent/index/tag_postings.h"
#include "vemora/platform/records/camera.h"

namespace odb {
class database;
}

namespace kuv::vemora::embedded_server {

/// The cameras of the site as a pass sees them.
class Camera_Index {
 public:
  using Camera_List = std::vector<std::shared_ptr<camera>>;

  explicit Camera_Index(Camera_List cameras);

  /// Reads cameras and their tags; capabilities when they are first looked at, all at once.
  static Camera_Index load(odb::database& database, Capability_Guard guard);

  /// Ascending by id.
  const Camera_List& all() const { return cameras_; }

  /// Null when there is none.
  std::shared_ptr<camera> find(std::uint64_t id) const;

  /// Whether the capabilities of a camera can be read; see Capability_Store.
  bool has_readable_capabilities(std::uint64_t id) const;

  /// Those that Tag_Filter::matches_any says yes to.
  Camera_List matching(const std::set<ODB_Utils::Tag_Search_Term>& terms) const;

  /// Those of `candidates` (all, when there are none) that `wanted` says yes to, ascending by id
  /// and each once; cameras that are not stored drop out.
  template <class Wanted>
  Camera_List select(const Camera_List& candidates, Wanted wanted) const {
    Camera_List selected;
    for (const std::shared_ptr<camera>& candidate : candidates.empty() ? cameras_ : candidates) {
      const std::shared_ptr<camera> known = candidates.empty() ? candidate : find(candidate->id);
      if (known && wanted(*known)) {
        selected.push_back(known);
      }
    }
    sort_unique_by(selected, [](const std::shared_ptr<camera>& record) { return record->id; });
    return selected;
  }

 private:
  void load_tags(odb::database& database);

  Camera_List cameras_;
  std::shared_ptr<Capability_Store> capabilities_;  ///< null for cameras that were not loaded
  std::unordered_map<std::uint64_t, std::size_t, Id_Hash> positions_;  ///< in cameras_
  Tag_Postings<std::size_t> tags_;                                     ///< of such positions
};

}  // namespace kuv::vemora::embedded_server
