// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>

#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/testing/builders/site_description.h"

namespace kuv::test {

/// A site in words that can be stored, with the object types that an inventory names:
///
///     site.given_camera(10).with_tag("site", "north").with_topic("tns1:VideoSource/MotionAlarm");
///     site.store_in(database);
///     site.given_camera(10).without_tag("site");
///     site.store_in(database);
class Site_Builder : public Site_Description {
 public:
  Site_Builder() = default;
  explicit Site_Builder(const Site_Description& described) : Site_Description(described) {}

  /// A general object type and what it stands for.
  void given_object_type(const std::string& name, std::set<std::string> types);

  embedded_server::Inventory inventory() const;
  void store_in(const std::shared_ptr<embedded_server::Database>& database) const;

 private:
  std::map<std::string, std::set<std::string>> object_types_;
};

/// A capability document of a camera that can send these topics.
std::string capabilities_with_topics(const std::set<std::string>& topics);

}  // namespace kuv::test
