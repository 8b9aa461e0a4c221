// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>

#include "support/fake_repository.h"
#include "vemora/platform/tags/tag_info.h"

namespace kuv::fuzz {

/// The server that documents are parsed on.
constexpr std::uint64_t server_id = 9;

const vemora::Tag_Map& server_tags();

/// Schedules 1 to 4 can be used, 5 cannot, others do not exist.
bool can_be_used(std::uint64_t schedule_id);

/// A database of that server, perhaps, and of the schedules.
test::Fake_Database a_site(bool server_is_known);

}  // namespace kuv::fuzz
