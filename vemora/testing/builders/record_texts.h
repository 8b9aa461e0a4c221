// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "vemora/testing/builders/record_builders.h"

namespace kuv::test {

// Stored records as one line of text each: everything in them, so that two of them are the same
// record state exactly when their texts are the same.

inline std::string quoted_or_none(const std::optional<std::string>& text) {
  return text ? '"' + *text + '"' : "none";
}

/// A link that is set without holding a record tells no more than that: to ask its id takes code
/// that a database generated.
template <class Link>
std::string text_of_link(const Link& link) {
  const auto* const record = link.get();
  return !link ? "none" : record == nullptr ? "not loaded" : std::to_string(record->id);
}

/// Of a map of tags and of a set of them.
template <class Tags>
std::string text_of_tags(const Tags& tags) {
  std::vector<std::string> texts;
  for (const auto& [name, info] : tags) {
    texts.push_back(name + (info.value ? '=' + *info.value : ""));
  }
  return fmt::format("[{}]", fmt::join(texts, " "));
}

inline std::string text_of(const Trigger_Source& source) {
  std::string text = fmt::format("type {}", static_cast<int>(source.type));
  if (source.onvif_topic) {
    text += " topic " + quoted_or_none(source.onvif_topic);
  }
  if (source.search_item) {
    text += fmt::format(" object {}{}", quoted_or_none(source.search_item->object_type),
                        source.search_item->motion_required ? " in motion" : "");
  }
  if (source.activity_duration) {
    const Activity_Duration& duration = *source.activity_duration;
    text += fmt::format(" mode {} for {}us dropout {}us", static_cast<int>(duration.mode),
                        duration.min_duration.count(), duration.dropout.count());
  }
  return text;
}

inline std::string text_of(const trigger& record) {
  std::vector<std::string> sources;
  for (const Trigger_Source& source : record.sources) {
    sources.push_back(text_of(source));
  }
  std::vector<std::string> schedules;
  for (const Trigger_Mapping_Entry& entry : record.schedules) {
    schedules.push_back(fmt::format("{} {}{}", entry.schedule->id, entry.schedule->name,
                                    entry.schedule->usable ? "" : " (not usable)"));
  }
  return fmt::format("trigger {} {} schedules [{}] sources [{}]", record.id,
                     quoted_or_none(record.name), fmt::join(schedules, ", "),
                     fmt::join(sources, ", "));
}

inline std::string text_of(const metadata_event_subscription& record) {
  std::vector<std::string> cameras;
  for (const auto& link : record.camera_links) {
    cameras.push_back(text_of_link(link));
  }
  return fmt::format(
      "subscription {} {} camera {} topic {} category {} tags {} cameras [{}] triggers [{}]",
      record.id, quoted_or_none(record.name),
      record.camera ? std::to_string(record.camera_id()) : "none",
      quoted_or_none(record.onvif_topic), text_of_link(record.category), text_of_tags(record.tags),
      fmt::join(cameras, " "), fmt::join(record.trigger_ids(), " "));
}

inline std::string text_of(const eta_camera& record) {
  std::vector<std::uint64_t> ids;
  for (const std::shared_ptr<trigger>& held : record.triggers) {
    ids.push_back(held->id);
  }
  return fmt::format("detection {} camera {} triggers [{}]", record.id, record.camera_id(),
                     fmt::join(ids, " "));
}

/// Without the capabilities.
inline std::string text_of(const camera& record) {
  return fmt::format("camera {} {}{}{} tags {}", record.id, quoted_or_none(record.name),
                     record.object_detection ? " objects" : "",
                     record.motion_detection ? " motion" : "", text_of_tags(record.tags));
}

/// "nothing" for a null pointer.
template <class Record>
std::string text_of(const std::shared_ptr<Record>& record) {
  return record ? text_of(*record) : "nothing";
}

template <class Record>
std::vector<std::string> texts_of(const std::vector<std::shared_ptr<Record>>& records) {
  std::vector<std::string> texts;
  for (const std::shared_ptr<Record>& record : records) {
    texts.push_back(text_of(record));
  }
  return texts;
}

/// Throws std::logic_error if one is null, which no list of a repository may hold.
template <class Record>
std::vector<std::uint64_t> ids_of(const std::vector<std::shared_ptr<Record>>& records) {
  std::vector<std::uint64_t> ids;
  for (const std::shared_ptr<Record>& record : records) {
    if (!record) {
      throw std::logic_error("a list of records holds a null pointer");
    }
    ids.push_back(record->id);
  }
  return ids;
}

}  // namespace kuv::test
