// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/pass/site_row.h"

#include <odb/database.hxx>

#include "rows-odb.h"
#include "vemora/embedded_server/persistent/engine/bring_up_to_date.h"

namespace kuv::vemora::embedded_server {

rows::Site load_site(odb::database& database) {
  rows::Site site;
  if (!database.find(1, site)) {
    site.schema_version = 0;
  }
  require_known_version(site.schema_version);  // a newer program may have come since it was opened
  return site;
}

}  // namespace kuv::vemora::embedded_server
