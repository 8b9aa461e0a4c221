// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <variant>
#include <vector>

#include "vemora/embedded_server/persistent/mapping/rows.h"
#include "vemora/platform/records/camera.h"
#include "vemora/platform/records/metadata_event_category.h"
#include "vemora/platform/records/schedule.h"
#include "vemora/platform/records/server.h"
#include "vemora/platform/records/trigger.h"

namespace kuv::vemora::embedded_server {

/// Writes rows in bulk, in the transaction that is current on this thread: how many statements that
/// takes is the engine's business. The rows of a call are of one table, each with a key of its own,
/// in whatever order.
class Row_Writer {
 public:
  virtual ~Row_Writer() = default;

  /// Adds new rows; a fault when one of them is there.
  template <class Row>
  void insert(const std::vector<Row>& rows) {
    if (!rows.empty()) {
      insert_all(&rows);
    }
  }

  /// Adds rows, or replaces those with their keys; one that is there as it is stays untouched. Not
  /// for tables with texts in their keys, on which not every engine has an index.
  template <class Row>
  void put(const std::vector<Row>& rows) {
    if (!rows.empty()) {
      put_all(&rows);
    }
  }

  /// Takes away the rows with the keys of these; a fault when one of them is not there.
  template <class Row>
  void erase(const std::vector<Row>& rows) {
    if (!rows.empty()) {
      erase_all(&rows);
    }
  }

  template <class... Rows>
  using One_Of = std::variant<const std::vector<Rows>*...>;

  /// The rows of one call, of whatever table.
  using Batch =
      One_Of<server, rows::Server_Tag, camera, rows::Camera_Tag, rows::Capability_Text,
             rows::Camera_Capability, schedule, metadata_event_category, rows::Meta_Type, trigger,
             rows::Trigger_Source_Row, rows::Trigger_Schedule, rows::Subscription,
             rows::Subscription_Tag, rows::Subscription_Camera, rows::Subscription_Trigger,
             rows::ETA_Camera, rows::ETA_Camera_Trigger, rows::Pending_Camera, rows::History_Entry>;

 protected:
  virtual void insert_all(const Batch& batch) = 0;
  virtual void put_all(const Batch& batch) = 0;
  virtual void erase_all(const Batch& batch) = 0;
};

}  // namespace kuv::vemora::embedded_server
