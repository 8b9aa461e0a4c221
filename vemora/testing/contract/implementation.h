// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "vemora/platform/repositories/repository.h"
#include "vemora/testing/builders/site_description.h"

namespace kuv::test {

/// What is stored, read past the repositories: of the links, so that none is left over.
struct Stored_Rows {
  using Link = std::pair<std::uint64_t, std::uint64_t>;  ///< ids of a record and of its trigger

  std::set<std::uint64_t> trigger_ids;
  std::set<Link> subscription_links;
  std::set<Link> detection_links;
  std::size_t schedules_of_triggers = 0;  ///< of all triggers together
  std::size_t sources_of_triggers = 0;
};

/// A subscription of no kind: with a camera or with a topic, but not with both. No operation of a
/// repository stores one; another program may.
struct Half_Filled_Subscription {
  std::uint64_t id = 0;
  std::string name;
  std::optional<std::uint64_t> camera_id;
  std::optional<std::string> onvif_topic;
};

/// One site, kept by the implementation whose repositories are tested. It is made with what its
/// description names, and without triggers, topic subscriptions and detection records. It goes with
/// this object.
class Site_Under_Test {
 public:
  virtual ~Site_Under_Test() = default;

  /// The repositories over the site, until the next reopen().
  virtual Repository& repository() = 0;

  // What follows is optional. The suite says less of an implementation that does without.

  /// Commits what is open and lets go of everything that is kept in memory, as when the server is
  /// started again: the next repository() answers what is stored. False if there is no such thing;
  /// then tests of what is stored are skipped.
  virtual bool reopen() { return false; }

  /// What is stored now. Asked right after reopen().
  virtual std::optional<Stored_Rows> look_behind() { return std::nullopt; }

  /// Stores such a subscription as another program would. False if nothing can. Asked right after
  /// reopen().
  virtual bool plant(const Half_Filled_Subscription& /*planted*/) { return false; }
};

/// An implementation of the repositories, for the contract suite.
struct Contract_Implementation {
  std::string name;  ///< of letters, digits and underscores
  std::function<std::unique_ptr<Site_Under_Test>(const Site_Description& site)> make;
  bool stores_any_bytes = true;  ///< in a text; otherwise UTF-8 without zeros
};

/// By its name.
inline std::ostream& operator<<(std::ostream& stream, const Contract_Implementation& tested) {
  return stream << tested.name;
}

}  // namespace kuv::test
