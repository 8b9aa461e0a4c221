// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

// The rows that are no records of their own. Links are keyed by both ends and carry no position, so
// that any of them can come and go without touching the others.

#include "vemora/platform/odb_runtime.h"

#include <cstdint>
#include <odb/core.hxx>
#include <optional>
#include <string>
#include <vector>

#include "vemora/embedded_server/persistent/mapping/optional_traits.h"

namespace kuv::vemora::rows {

/// Two ids that together are a key.
#pragma db value
struct Link {
  std::uint64_t record_id = 0;
  std::uint64_t linked_id = 0;
};

inline bool operator<(const Link& left, const Link& right) {
  return left.record_id != right.record_id ? left.record_id < right.record_id
                                           : left.linked_id < right.linked_id;
}

/// A record and one of its tags.
#pragma db value
struct Tag_Key {
  std::uint64_t record_id = 0;
  std::string name;
};

inline bool operator<(const Tag_Key& left, const Tag_Key& right) {
  return left.record_id != right.record_id ? left.record_id < right.record_id
                                           : left.name < right.name;
}

#pragma db object table("server_tag")
struct Server_Tag {
#pragma db id column("")
  Tag_Key key;
  std::optional<std::string> value;
};

#pragma db object table("camera_tag")
struct Camera_Tag {
#pragma db id column("")
  Tag_Key key;
  std::optional<std::string> value;
};

#pragma db object table("subscription_tag")
struct Subscription_Tag {
#pragma db id column("")
  Tag_Key key;
  std::optional<std::string> value;
};

/// Cameras of one model say the same, so each text is kept once.
#pragma db object table("capability_document")
struct Capability_Text {
#pragma db id
  std::uint64_t id = 0;
  std::string text;
};

#pragma db object table("camera_capability")
struct Camera_Capability {
#pragma db id
  std::uint64_t camera_id = 0;
  std::uint64_t document_id = 0;
};

/// `type` is what `name` stands for, among others.
#pragma db value
struct Meta_Type_Key {
  std::string name;
  std::string type;
};

inline bool operator<(const Meta_Type_Key& left, const Meta_Type_Key& right) {
  return left.name != right.name ? left.name < right.name : left.type < right.type;
}

#pragma db object table("meta_type")
struct Meta_Type {
#pragma db id column("")
  Meta_Type_Key key;
};

#pragma db object table("trigger_schedule")
struct Trigger_Schedule {
#pragma db id column("")
  Link key;  ///< trigger, schedule
};

#pragma db value
struct Source_Key {
  std::uint64_t trigger_id = 0;
  std::uint32_t position = 0;  ///< in the order of the trigger's source set
};

inline bool operator<(const Source_Key& left, const Source_Key& right) {
  return left.trigger_id != right.trigger_id ? left.trigger_id < right.trigger_id
                                             : left.position < right.position;
}

#pragma db object table("trigger_source")
struct Trigger_Source_Row {
#pragma db id column("")
  Source_Key key;
  std::int32_t type = 0;
  std::optional<std::string> onvif_topic;
  std::optional<std::string> object_type;
  std::optional<bool> motion_required;
  std::optional<std::int32_t> activity_mode;
  std::optional<std::int64_t> min_duration_us;
  std::optional<std::int64_t> dropout_us;
};

#pragma db object table("subscription")
struct Subscription {
#pragma db id
  std::uint64_t id = 0;
  std::string name;
  std::optional<std::uint64_t> category_id;
  std::optional<std::string> onvif_topic;
  std::optional<std::uint64_t> camera_id;
};

#pragma db object table("subscription_camera")
struct Subscription_Camera {
#pragma db id column("")
  Link key;  ///< subscription, camera
};

#pragma db object table("subscription_trigger")
struct Subscription_Trigger {
#pragma db id column("")
  Link key;  ///< subscription, trigger
};

#pragma db object table("eta_camera")
struct ETA_Camera {
#pragma db id
  std::uint64_t id = 0;
  std::uint64_t camera_id = 0;
};

#pragma db object table("eta_camera_trigger")
struct ETA_Camera_Trigger {
#pragma db id column("")
  Link key;  ///< detection record, trigger
};

/// The next free id of one kind of record.
#pragma db object table("id_allocation")
struct Id_Allocation {
#pragma db id
  std::string kind;
  std::uint64_t next_id = 1;
};

/// A camera whose subscriptions changed and whose stream has not been reconciled since.
#pragma db object table("pending_camera")
struct Pending_Camera {
#pragma db id
  std::uint64_t camera_id = 0;
};

/// An accepted document, byte for byte as it was written: it may hold what is no text to a
/// database.
#pragma db object table("document")
struct Document {
#pragma db id
  std::string kind;
#pragma db sqlite : type("BLOB") pgsql : type("BYTEA")
  std::vector<char> text;
};

/// A pass that changed something, or ended with other errors than the one before. Texts are named
/// by their digests; they may have been given up since.
#pragma db object table("history_entry")
struct History_Entry {
#pragma db id
  std::uint64_t pass = 0;
  std::int64_t at = 0;  ///< seconds since 1970, UTC
  std::optional<std::string> author;
  std::string command;
  std::optional<std::string> note;
  std::int32_t status = 0;  ///< see History_Entry::Status
  std::uint64_t error_count = 0;
  std::optional<std::string> errors;
  std::optional<std::string> config;
  std::optional<std::string> mapping;
  // Ids, see history/id_ranges.h.
  std::string triggers_created;
  std::string triggers_changed;
  std::string triggers_deleted;
  std::string reconciled;
  // Records and links by kind.
  std::uint64_t trigger_writes = 0;
  std::uint64_t trigger_deletions = 0;
  std::uint64_t subscription_writes = 0;
  std::uint64_t subscription_deletions = 0;
  std::uint64_t subscription_link_writes = 0;
  std::uint64_t subscription_link_deletions = 0;
  std::uint64_t detection_writes = 0;
  std::uint64_t detection_deletions = 0;
  std::uint64_t detection_link_writes = 0;
  std::uint64_t detection_link_deletions = 0;
};

/// A text that entries of the history name, kept once.
#pragma db object table("history_text")
struct History_Text {
#pragma db id
  std::string digest;
  std::uint64_t size = 0;
#pragma db sqlite : type("BLOB") pgsql : type("BYTEA")
  std::vector<char> text;
};

/// What the database is. One row.
#pragma db object table("site")
struct Site {
#pragma db id
  std::int32_t id = 1;
  std::int32_t schema_version = 0;
  std::optional<std::uint64_t> server_id;  ///< the one server that uses it; set by the first
};

}  // namespace kuv::vemora::rows
