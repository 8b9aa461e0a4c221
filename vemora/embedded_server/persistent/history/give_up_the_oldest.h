// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <cstdint>

#include "vemora/embedded_server/persistent/history.h"

namespace odb {
class database;
}

namespace kuv::vemora::embedded_server {

/// Keeps the history within its bounds (see history.h), in the transaction at hand. To be called
/// when an entry is finished; `last_pass` is its number, `has_new_texts` whether it has brought
/// any.
void give_up_the_oldest(odb::database& database, std::uint64_t last_pass, bool has_new_texts,
                        std::size_t most_bytes = most_bytes_of_history_texts);

}  // namespace kuv::vemora::embedded_server
