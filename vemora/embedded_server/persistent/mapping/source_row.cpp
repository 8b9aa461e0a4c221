// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/mapping/source_row.h"

namespace kuv::vemora::rows {

Trigger_Source_Row to_row(std::uint64_t trigger_id, std::uint32_t position,
                          const Trigger_Source& source) {
  Trigger_Source_Row row;
  row.key = {trigger_id, position};
  row.type = static_cast<std::int32_t>(source.type);
  row.onvif_topic = source.onvif_topic;
  if (source.search_item) {
    row.object_type = source.search_item->object_type;
    row.motion_required = source.search_item->motion_required;
  }
  if (source.activity_duration) {
    row.activity_mode = static_cast<std::int32_t>(source.activity_duration->mode);
    row.min_duration_us = source.activity_duration->min_duration.count();
    row.dropout_us = source.activity_duration->dropout.count();
  }
  return row;
}

Trigger_Source to_source(const Trigger_Source_Row& row) {
  Trigger_Source source;
  source.type = static_cast<Trigger_Source_Type>(row.type);
  source.onvif_topic = row.onvif_topic;
  if (row.object_type) {
    source.search_item = Object_Search_Item{*row.object_type, row.motion_required.value_or(false)};
  }
  if (row.activity_mode) {
    source.activity_duration =
        Activity_Duration{static_cast<Activity_Duration_Mode>(*row.activity_mode),
                          std::chrono::microseconds(row.min_duration_us.value_or(0)),
                          std::chrono::microseconds(row.dropout_us.value_or(0))};
  }
  return source;
}

}  // namespace kuv::vemora::rows
