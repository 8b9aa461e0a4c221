// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <functional>

namespace kuv::vemora::embedded_server {

/// How many records of a kind are about to be deleted, and of how many that are stored.
struct Deletions {
  /// Of one kind.
  struct Of {
    std::size_t deleted = 0;
    std::size_t stored = 0;
  };

  Of triggers;             ///< only a pass deletes them
  Of topic_subscriptions;  ///< a pass and a prune do
  // All others are deleted by a prune alone.
  Of cameras;
  Of servers;
  Of schedules;
  Of categories;
  Of generic_subscriptions;
  Of object_types;

  /// Nothing is deleted.
  bool empty() const {
    return triggers.deleted + topic_subscriptions.deleted + cameras.deleted + servers.deleted +
               schedules.deleted + categories.deleted + generic_subscriptions.deleted +
               object_types.deleted ==
           0;
  }
};

/// Says whether a pass, or a prune, that deletes this much may be committed.
using Permit_Deletions = std::function<bool(const Deletions&)>;

}  // namespace kuv::vemora::embedded_server
