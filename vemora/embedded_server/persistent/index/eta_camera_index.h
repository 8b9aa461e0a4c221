// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

#include "vemora/embedded_server/persistent/index/camera_index.h"
#include "vemora/embedded_server/persistent/index/id_hash.h"
#include "vemora/embedded_server/persistent/index/linked_records.h"
#include "vemora/embedded_server/persistent/index/trigger_index.h"
#include "vemora/embedded_server/persistent/mapping/rows.h"
#include "vemora/platform/repositories/eta_camera_repository.h"

namespace kuv::vemora::embedded_server {

/// The object-detection maps as a pass sees them.
class ETA_Camera_Index {
 public:
  using Record = eta_camera;
  using List = ETA_Camera_Repository::Record_List;
  using Query = ETA_Camera_Repository::Get_Params;

  /// What the database does not hold yet, or holds no longer.
  struct Net_Changes {
    std::vector<rows::ETA_Camera> added;
    std::vector<std::uint64_t> deleted;
    Changes::Of<Changes::Link> links;

    bool empty() const { return added.empty() && deleted.empty() && links.empty(); }
  };

  ETA_Camera_Index(odb::database& database, const Camera_Index& cameras,
                   const Trigger_Index& triggers);

  /// Null when the camera has none.
  std::shared_ptr<Record> find_by_camera(std::uint64_t camera_id) const;

  List all() const { return records_.all(); }
  List matching(const Query& query) const;

  bool add(const std::shared_ptr<Record>& added);
  bool update(const std::shared_ptr<Record>& changed);
  void drop_triggers(const std::set<std::uint64_t>& dead) { records_.drop_triggers(dead); }
  void delete_without_triggers();

  /// Puts a fresh record of a trigger in the place of one that carries refused changes.
  void replace_trigger(const std::shared_ptr<trigger>& fresh) { records_.replace_trigger(fresh); }

  Net_Changes settle();
  void save_ids(odb::database& database) { records_.save_ids(database); }

 private:
  using Records = Linked_Records<Record>;
  using Entry = Records::Entry;

  void load_records(odb::database& database);

  const Camera_Index& cameras_;
  const Trigger_Index& triggers_;
  Records records_;
  std::unordered_map<std::uint64_t, Entry*, Id_Hash> by_camera_;
};

}  // namespace kuv::vemora::embedded_server
