// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstdint>
#include <memory>
#include <set>
#include <vector>

#include "store.h"
#include "vemora/platform/records/camera.h"
#include "vemora/platform/records/eta_camera.h"
#include "vemora/platform/records/metadata_event_subscription.h"
#include "vemora/platform/records/schedule.h"
#include "vemora/platform/records/trigger.h"
#include "vemora/platform/tags/tag_info.h"

namespace own_platform {

// Rows of the store as records, and the other way round. A loaded record is a copy of its own, with
// all links loaded and no changes noted.

std::shared_ptr<kuv::vemora::camera> load_camera(Store& store, std::uint64_t id);
std::shared_ptr<kuv::vemora::schedule> load_schedule(Store& store, std::uint64_t id);
std::shared_ptr<kuv::vemora::trigger> load_trigger(Store& store, std::uint64_t id);
std::shared_ptr<kuv::vemora::metadata_event_subscription> load_subscription(Store& store,
                                                                            std::uint64_t id);
std::shared_ptr<kuv::vemora::eta_camera> load_detection(Store& store, std::uint64_t id);

kuv::vemora::Tag_Map tags_of(const Json::Value& row);
Json::Value row_of(const kuv::vemora::Tag_Map& tags);
Json::Value row_of(const kuv::vemora::trigger& record);

std::set<std::uint64_t> ids_in(const Json::Value& list);
Json::Value list_of(const std::set<std::uint64_t>& ids);

}  // namespace own_platform
