// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/history/last_entry.h"

#include "rows-odb.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"

namespace kuv::vemora::embedded_server {

std::optional<rows::History_Entry> last_entry_in(odb::database& database) {
  std::optional<rows::History_Entry> last;
  for_each_row<rows::History_Entry>(database, "pass DESC LIMIT 1",
                                    [&last](const rows::History_Entry& row) { last = row; });
  return last;
}

}  // namespace kuv::vemora::embedded_server
