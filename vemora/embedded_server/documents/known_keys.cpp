// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/documents/known_keys.h"

#include <array>
#include <cstddef>

namespace kuv::vemora::embedded_server {
namespace {

/// The keys of the documents' schemas.
constexpr std::string_view keys[] = {"activityDuration",
                                     "anyTime",
                                     "camera",
                                     "cameraIds",
                                     "cameras",
                                     "capabilities",
                                     "categoryId",
                                     "dropoutMs",
                                     "eventCategories",
                                     "eventSubscription",
                                     "id",
                                     "minDurationMs",
                                     "mode",
                                     "motionDetection",
                                     "motionRequired",
                                     "name",
                                     "notificationAckTimeoutSecs",
                                     "notificationDigestCooldownMins",
                                     "notificationMaxLatencySecs",
                                     "notificationNackDelayMs",
                                     "objectDetection",
                                     "objectTypes",
                                     "onvifTopic",
                                     "properties",
                                     "scheduleIds",
                                     "schedules",
                                     "searchItem",
                                     "server",
                                     "servers",
                                     "sources",
                                     "subscriptions",
                                     "tags",
                                     "triggerIds",
                                     "triggerMapping",
                                     "triggers",
                                     "type",
                                     "usable"};

constexpr std::size_t slots = 128;
using Table = std::array<std::string_view, slots>;

constexpr std::size_t slot_of(std::string_view key) {
  const std::size_t first = static_cast<unsigned char>(key.front());
  const std::size_t last = static_cast<unsigned char>(key.back());
  return (key.size() * 5 + first * 3 + last) % slots;
}

/// Each key in its slot, or in the next one that is free.
constexpr Table make_table() {
  Table table{};
  for (const std::string_view key : keys) {
    std::size_t slot = slot_of(key);
    while (!table[slot].empty()) {
      slot = (slot + 1) % slots;
    }
    table[slot] = key;
  }
  return table;
}

constexpr Table table = make_table();

}  // namespace

const char* known_key(std::string_view key) {
  if (key.empty()) {
    return nullptr;
  }
  for (std::size_t slot = slot_of(key); !table[slot].empty(); slot = (slot + 1) % slots) {
    if (table[slot] == key) {
      return table[slot].data();
    }
  }
  return nullptr;
}

}  // namespace kuv::vemora::embedded_server
