// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <memory>
#include <set>

#include "vemora/platform/export.h"
#include "vemora/platform/records/trigger.h"

namespace kuv::vemora {

/// The stored triggers.
///
/// A bool answer is true when the record is stored and false when the database refused it. A
/// refusal costs the trigger: it is reported as an error and not applied, so that the clean-up
/// deletes its record, if there is one, with its links. What an exception costs depends on the
/// operation, see Repository.
class VEMORA_API Trigger_Repository {
 public:
  virtual ~Trigger_Repository() = default;

  /// The trigger of that id with its schedules and sources; null when there is none. A schedule
  /// that the site has lost is left out of the record, never a null pointer in it.
  virtual std::shared_ptr<trigger> find_by_id(std::uint64_t id) = 0;

  /// Stores a new trigger under the id it carries. The repository may keep the object. Refused when
  /// that id is taken, and when one of its schedules is not stored.
  virtual bool add(const std::shared_ptr<trigger>& added) = 0;

  /// Stores name, schedules and sources of a changed trigger. Refused when it is not stored, and
  /// when one of its schedules is not; the record then keeps its changes in memory alone, and
  /// find_by_id answers what is stored.
  virtual bool update(const std::shared_ptr<trigger>& changed) = 0;

  /// Deletes every trigger whose id is not in `kept`, and their links to other records with them.
  /// The subscriptions and detection records stay, until their own delete_stale. An exception fails
  /// the pass.
  virtual void delete_all_except(const std::set<std::uint64_t>& kept) = 0;

  /// Deletes every trigger, and their links to other records with them. Called when no trigger was
  /// applied, in place of delete_all_except with no ids. An exception fails the pass.
  virtual void delete_all() = 0;
};

}  // namespace kuv::vemora
