// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <string>

#include "vemora/operations/site/reason.h"
#include "vemora/operations/site/site_view.h"

namespace kuv::vemora::operations {

// What a camera of the site, or a subscription, lacks for a trigger. Each is to be asked for where
// it is so.

Reason reason_of_camera_filter(const Trigger_Config& config, const camera& record);
Reason reason_of_gone_camera(std::uint64_t camera_id);
Reason reason_of_no_object_detection(std::uint64_t camera_id);
Reason reason_of_no_motion_detection(std::uint64_t camera_id);
Reason reason_of_subscription_filter(const Trigger_Config& config, std::uint64_t subscription_id,
                                     const Site_View::Generic_Subscription& subscription);

/// Why no subscription to the topic is made for the camera; nothing where the camera supports it.
Reasons reasons_of_capabilities(const camera& record, const std::string& topic);

}  // namespace kuv::vemora::operations
