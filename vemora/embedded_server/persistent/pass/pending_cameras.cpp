// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/pass/pending_cameras.h"

#include <algorithm>
#include <vector>

#include "rows-odb.h"
#include "vemora/embedded_server/persistent/engine/engine.h"
#include "vemora/embedded_server/persistent/engine/row_writer.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"

namespace kuv::vemora::embedded_server {

std::set<std::uint64_t> load_pending(Engine& engine) {
  std::set<std::uint64_t> ids;
  for_each_row<rows::Pending_Camera>(
      engine.odb(), "camera_id",
      [&ids](const rows::Pending_Camera& row) { ids.insert(row.camera_id); });
  return ids;
}

bool are_pending(Engine& engine, const std::set<std::uint64_t>& camera_ids) {
  const std::set<std::uint64_t> pending = load_pending(engine);
  return std::any_of(camera_ids.begin(), camera_ids.end(),
                     [&pending](std::uint64_t id) { return pending.count(id) != 0; });
}

void note_pending(Engine& engine, const std::set<std::uint64_t>& camera_ids) {
  if (camera_ids.empty()) {
    return;
  }
  const std::set<std::uint64_t> noted = load_pending(engine);
  std::vector<rows::Pending_Camera> added;
  for (const std::uint64_t camera_id : camera_ids) {
    if (noted.count(camera_id) == 0) {
      added.push_back({camera_id});
    }
  }
  engine.rows().insert(added);
}

void strike_out_pending(Engine& engine, const std::set<std::uint64_t>& camera_ids) {
  if (camera_ids.empty()) {
    return;
  }
  std::vector<rows::Pending_Camera> reconciled;
  for (const std::uint64_t camera_id : load_pending(engine)) {
    if (camera_ids.count(camera_id) != 0) {
      reconciled.push_back({camera_id});
    }
  }
  engine.rows().erase(reconciled);
}

}  // namespace kuv::vemora::embedded_server
