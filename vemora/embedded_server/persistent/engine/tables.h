// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <functional>
#include <tuple>
#include <type_traits>

#include "vemora/embedded_server/persistent/mapping/rows.h"
#include "vemora/platform/records/camera.h"
#include "vemora/platform/records/metadata_event_category.h"
#include "vemora/platform/records/schedule.h"
#include "vemora/platform/records/server.h"
#include "vemora/platform/records/trigger.h"

namespace kuv::vemora::embedded_server {

// The columns of each table, for what is done alike with the rows of all: comparing them, and
// statements over many. ODB maps the same rows one at a time.

/// A column, and what of a row stands in it (a member, or a function of the row).
template <class Get>
struct Column {
  const char* name;
  Get get;
};

template <class Get>
constexpr Column<Get> column(const char* name, Get get) {
  return {name, get};
}

/// `keys` and `others` are tuples of columns.
template <class Row>
struct Table;

template <class Row>
struct Link_Table {
  static constexpr auto keys =
      std::make_tuple(column("record_id", [](const Row& row) { return row.key.record_id; }),
                      column("linked_id", [](const Row& row) { return row.key.linked_id; }));
  static constexpr auto others = std::make_tuple();
};

template <class Row>
struct Tag_Table {
  static constexpr auto keys = std::make_tuple(
      column("record_id", [](const Row& row) { return row.key.record_id; }),
      column("name", [](const Row& row) -> const std::string& { return row.key.name; }));
  static constexpr auto others = std::make_tuple(column("value", &Row::value));
};

/// A record of an id and a name.
template <class Row>
struct Name_Table {
  static constexpr auto keys = std::make_tuple(column("id", &Row::id));
  static constexpr auto others = std::make_tuple(column("name", &Row::name));
};

template <>
struct Table<server> : Name_Table<server> {
  static constexpr const char* name = "server";
};
template <>
struct Table<rows::Server_Tag> : Tag_Table<rows::Server_Tag> {
  static constexpr const char* name = "server_tag";
};

template <>
struct Table<camera> {
  static constexpr const char* name = "camera";
  static constexpr auto keys = std::make_tuple(column("id", &camera::id));
  static constexpr auto others = std::make_tuple(
      column("name", &camera::name), column("object_detection", &camera::object_detection),
      column("motion_detection", &camera::motion_detection));
};
template <>
struct Table<rows::Camera_Tag> : Tag_Table<rows::Camera_Tag> {
  static constexpr const char* name = "camera_tag";
};

template <>
struct Table<rows::Capability_Text> {
  static constexpr const char* name = "capability_document";
  static constexpr auto keys = std::make_tuple(column("id", &rows::Capability_Text::id));
  static constexpr auto others = std::make_tuple(column("text", &rows::Capability_Text::text));
};
template <>
struct Table<rows::Camera_Capability> {
  static constexpr const char* name = "camera_capability";
  static constexpr auto keys =
      std::make_tuple(column("camera_id", &rows::Camera_Capability::camera_id));
  static constexpr auto others =
      std::make_tuple(column("document_id", &rows::Camera_Capability::document_id));
};

template <>
struct Table<schedule> {
  static constexpr const char* name = "schedule";
  static constexpr auto keys = std::make_tuple(column("id", &schedule::id));
  static constexpr auto others =
      std::make_tuple(column("name", &schedule::name), column("usable", &schedule::usable));
};

template <>
struct Table<metadata_event_category> : Name_Table<metadata_event_category> {
  static constexpr const char* name = "event_category";
};

template <>
struct Table<rows::Meta_Type> {
  using Row = rows::Meta_Type;
  static constexpr const char* name = "meta_type";
  static constexpr auto keys = std::make_tuple(
      column("name", [](const Row& row) -> const std::string& { return row.key.name; }),
      column("type", [](const Row& row) -> const std::string& { return row.key.type; }));
  static constexpr auto others = std::make_tuple();
};

template <>
struct Table<trigger> : Name_Table<trigger> {
  static constexpr const char* name = "trigger_record";
};
template <>
struct Table<rows::Trigger_Schedule> : Link_Table<rows::Trigger_Schedule> {
  static constexpr const char* name = "trigger_schedule";
};
template <>
struct Table<rows::Trigger_Source_Row> {
  using Row = rows::Trigger_Source_Row;
  static constexpr const char* name = "trigger_source";
  static constexpr auto keys =
      std::make_tuple(column("trigger_id", [](const Row& row) { return row.key.trigger_id; }),
                      column("position", [](const Row& row) { return row.key.position; }));
  static constexpr auto others = std::make_tuple(
      column("type", &Row::type), column("onvif_topic", &Row::onvif_topic),
      column("object_type", &Row::object_type), column("motion_required", &Row::motion_required),
      column("activity_mode", &Row::activity_mode),
      column("min_duration_us", &Row::min_duration_us), column("dropout_us", &Row::dropout_us));
};

template <>
struct Table<rows::Subscription> {
  using Row = rows::Subscription;
  static constexpr const char* name = "subscription";
  static constexpr auto keys = std::make_tuple(column("id", &Row::id));
  static constexpr auto others = std::make_tuple(
      column("name", &Row::name), column("category_id", &Row::category_id),
      column("onvif_topic", &Row::onvif_topic), column("camera_id", &Row::camera_id));
};
template <>
struct Table<rows::Subscription_Tag> : Tag_Table<rows::Subscription_Tag> {
  static constexpr const char* name = "subscription_tag";
};
template <>
struct Table<rows::Subscription_Camera> : Link_Table<rows::Subscription_Camera> {
  static constexpr const char* name = "subscription_camera";
};
template <>
struct Table<rows::Subscription_Trigger> : Link_Table<rows::Subscription_Trigger> {
  static constexpr const char* name = "subscription_trigger";
};

template <>
struct Table<rows::ETA_Camera> {
  static constexpr const char* name = "eta_camera";
  static constexpr auto keys = std::make_tuple(column("id", &rows::ETA_Camera::id));
  static constexpr auto others = std::make_tuple(column("camera_id", &rows::ETA_Camera::camera_id));
};
template <>
struct Table<rows::ETA_Camera_Trigger> : Link_Table<rows::ETA_Camera_Trigger> {
  static constexpr const char* name = "eta_camera_trigger";
};

template <>
struct Table<rows::Pending_Camera> {
  static constexpr const char* name = "pending_camera";
  static constexpr auto keys =
      std::make_tuple(column("camera_id", &rows::Pending_Camera::camera_id));
  static constexpr auto others = std::make_tuple();
};

template <>
struct Table<rows::History_Entry> {
  using Row = rows::History_Entry;
  static constexpr const char* name = "history_entry";
  static constexpr auto keys = std::make_tuple(column("pass", &Row::pass));
  static constexpr auto others = std::make_tuple(
      column("at", &Row::at), column("author", &Row::author), column("command", &Row::command),
      column("note", &Row::note), column("status", &Row::status),
      column("error_count", &Row::error_count), column("errors", &Row::errors),
      column("config", &Row::config), column("mapping", &Row::mapping),
      column("triggers_created", &Row::triggers_created),
      column("triggers_changed", &Row::triggers_changed),
      column("triggers_deleted", &Row::triggers_deleted), column("reconciled", &Row::reconciled),
      column("trigger_writes", &Row::trigger_writes),
      column("trigger_deletions", &Row::trigger_deletions),
      column("subscription_writes", &Row::subscription_writes),
      column("subscription_deletions", &Row::subscription_deletions),
      column("subscription_link_writes", &Row::subscription_link_writes),
      column("subscription_link_deletions", &Row::subscription_link_deletions),
      column("detection_writes", &Row::detection_writes),
      column("detection_deletions", &Row::detection_deletions),
      column("detection_link_writes", &Row::detection_link_writes),
      column("detection_link_deletions", &Row::detection_link_deletions));
};

/// Whether a row is two ids and nothing else.
template <class Row, class = void>
inline constexpr bool is_link = false;
template <class Row>
inline constexpr bool
    is_link<Row, std::enable_if_t<std::is_same_v<decltype(Row::key), rows::Link>>> = true;

/// What stands in those columns of a row, a tuple.
template <class Row, class Columns>
auto values_of(const Row& row, const Columns& columns) {
  const auto values = [&row](const auto&... each) {
    return std::tuple<std::invoke_result_t<decltype(each.get), const Row&>...>(
        std::invoke(each.get, row)...);
  };
  return std::apply(values, columns);
}

template <class Row>
auto key_of(const Row& row) {
  return values_of(row, Table<Row>::keys);
}

/// Whether two rows of one key are the same.
template <class Row>
bool same_row(const Row& left, const Row& right) {
  return values_of(left, Table<Row>::others) == values_of(right, Table<Row>::others);
}

}  // namespace kuv::vemora::embedded_server
