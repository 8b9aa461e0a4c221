// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/explain/explain.h"

#include "vemora/operations/explain/explainer.h"
#include "vemora/operations/site/site_view.h"

namespace kuv::vemora::operations {

Explanation explain(const std::shared_ptr<embedded_server::Database>& database,
                    std::uint64_t server_id, std::uint64_t trigger_id,
                    std::optional<std::uint64_t> camera_id) {
  const Site_View site(database, server_id);
  return Explainer(site, trigger_id).explanation(camera_id);
}

}  // namespace kuv::vemora::operations
