// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "fuzz/site.h"

#include <memory>

namespace kuv::fuzz {

using namespace kuv::vemora;

const Tag_Map& server_tags() {
  static const Tag_Map tags{{"site", {"north"}}, {"indoor", {}}};
  return tags;
}

bool can_be_used(std::uint64_t schedule_id) {
  return schedule_id >= 1 && schedule_id <= 4;
}

test::Fake_Database a_site(bool server_is_known) {
  test::Fake_Database database;
  for (std::uint64_t id = 1; id <= 5; ++id) {
    database.schedules.records[id] = std::make_shared<schedule>(schedule{id, "", can_be_used(id)});
  }
  if (server_is_known) {
    database.servers.records[server_id] =
        std::make_shared<server>(server{server_id, "north", server_tags()});
  }
  return database;
}

}  // namespace kuv::fuzz
