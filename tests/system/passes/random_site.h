// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/site_builder.h"
#include "system/passes/pass_model.h"
#include "vemora/testing/builders/random_draws.h"

namespace kuv::test {

/// A site at random, and documents at random over it; the same ones for the same seed.
class Random_Site : public Random_Draws {
 public:
  Random_Site(Site_Builder& site, std::uint64_t server_id, std::uint64_t seed);

  /// Changes some of the site, to be stored by the caller.
  void change();

  std::vector<Trigger_Spec> some_triggers();
  Trigger_Spec some_trigger(std::uint64_t id);
  std::vector<Mapping_Spec> some_mapping();

  static const std::vector<std::uint64_t> camera_ids;
  static const std::vector<std::uint64_t> trigger_ids;

  /// Each of them or not.
  template <class Value>
  std::set<Value> some_of(const std::vector<Value>& values, std::size_t one_in_how_many) {
    std::set<Value> some;
    for (const Value& value : values) {
      if (one_in(one_in_how_many)) {
        some.insert(value);
      }
    }
    return some;
  }

 private:
  std::optional<std::string> some_value();
  Tag_Filter_Spec some_filter();
  Tag_Map some_tags();
  std::set<std::uint64_t> some_schedules();
  void describe();
  void describe_camera(Site_Camera& camera);

  Site_Builder& site_;
  std::uint64_t server_id_;
};

}  // namespace kuv::test
