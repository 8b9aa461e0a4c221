// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstdint>
#include <string>

#include "vemora/embedded_server/persistent/inventory.h"

namespace kuv::benchmarks {

/// How large a site is, and what its triggers ask for. The same size makes the same site each time.
struct Site_Size {
  std::string name;
  std::uint64_t cameras = 0;
  std::uint64_t triggers = 0;
  std::uint64_t topics = 30;             ///< in use on the site
  std::uint64_t sources_of_trigger = 1;  ///< at most; triggers take turns from one on
  std::uint64_t cameras_of_group = 0;  ///< that a restricted trigger selects; 0: none is restricted
  std::uint64_t one_unrestricted_in = 1;
  bool mixed_sources = false;  ///< detection and generic events beside ONVIF topics
  std::uint64_t generic_subscriptions = 0;
};

/// The site that a text stands for:
///  - a number: as many pairs of a trigger and a subscription, every trigger being on every camera;
///  - CAMERASxTRIGGERSxTOPICS: every trigger is on every camera, with one topic each;
///  - S, M, L or XL.
/// Throws std::out_of_range for another name.
Site_Size site_of_text(const std::string& text);

vemora::embedded_server::Inventory make_inventory(const Site_Size& size);

/// The trigger configuration.
Json::Value make_config(const Site_Size& size);

/// One trigger listens to another topic.
Json::Value with_one_trigger_changed(Json::Value config, const Site_Size& size);

Json::Value with_half_of_the_triggers(Json::Value config);

/// One trigger in a hundred has this name.
Json::Value with_one_name_in_a_hundred(Json::Value config, const std::string& name);

/// The last trigger has no name.
Json::Value with_a_bad_last_trigger(Json::Value config);

/// A tenth of the cameras changes its group.
vemora::embedded_server::Inventory with_a_tenth_of_the_tags_changed(
    vemora::embedded_server::Inventory inventory, const Site_Size& size);

}  // namespace kuv::benchmarks
