// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <array>
#include <string_view>

#include "vemora/platform/export.h"
#include "vemora/platform/trigger_source_type.h"

namespace kuv::vemora {

/// The names of the source types in documents, each at the place of its value.
inline constexpr std::array<std::string_view, 6> source_type_names{
    "onvif-metadata", "metadata-event",   "object-detection",
    "external",       "motion-detection", "audio-detection"};

/// The name of a source type in documents; "unknown" for a value that is none.
VEMORA_API std::string_view name_of(Trigger_Source_Type type);

}  // namespace kuv::vemora
