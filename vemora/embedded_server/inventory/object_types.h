// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// General object types, each with the types that it stands for; those may be general as well.
using Object_Types = std::map<std::string, std::set<std::string>>;

/// The types that are not general and that these names lead to, each once. A name that is not
/// general stands for itself.
VEMORA_API std::vector<std::string> resolve_object_types(const Object_Types& types,
                                                         const std::vector<std::string>& names);

/// The cycles of general names, each as the path from a name back to itself. Of several cycles with
/// a name in common, only the first one is reported.
VEMORA_API std::vector<std::vector<std::string>> find_cycles(const Object_Types& types);

/// How many types a general name may stand for. The state that the pusher receives holds each type
/// for each trigger and camera: with 1,000 cameras, a million strings for each trigger.
constexpr std::size_t most_types_of_a_general_one = 1000;

/// How many general names a site may have.
constexpr std::size_t most_general_object_types = 20000;

/// What exceeds these limits.
struct Excessive_Types {
  bool too_many_general = false;
  std::vector<std::string> names;  ///< stand for too many types; empty if too many are general
};

VEMORA_API Excessive_Types find_excessive_types(const Object_Types& types);

}  // namespace kuv::vemora::embedded_server
