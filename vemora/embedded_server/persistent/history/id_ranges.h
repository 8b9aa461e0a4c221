// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <set>
#include <string>

namespace kuv::vemora::embedded_server {

/// Ids as an entry of the history holds them: ascending, those that follow each other as a range,
/// as in "7 9-12".
std::string ranges_of(const std::set<std::uint64_t>& ids);

/// The ids of such a text. Throws Database_Error if it is none, or has more than anybody stored.
std::set<std::uint64_t> ids_in(const std::string& ranges);

}  // namespace kuv::vemora::embedded_server
