// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <algorithm>
#include <vector>

#include "vemora/embedded_server/persistent/mapping/rows.h"

namespace kuv::vemora::embedded_server {

/// Generic subscriptions belong to the inventory; topic subscriptions are made by passes.
inline bool is_generic(const rows::Subscription& row) {
  return !row.camera_id && !row.onvif_topic;
}

/// Ids are unsigned, and stored as the same bits with a sign, so the database orders them
/// otherwise.
template <class Record>
void sort_by_id(std::vector<Record>& records) {
  std::sort(records.begin(), records.end(),
            [](const Record& left, const Record& right) { return left.id < right.id; });
}

}  // namespace kuv::vemora::embedded_server
