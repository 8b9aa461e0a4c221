// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

namespace kuv::vemora::embedded_server {

/// What opening a database may find, and may make.
enum class Open_Mode {
  existing,          ///< must be a database of ours; a fault otherwise
  as_found,          ///< may hold no site yet, see Database::holds_site(); null without a file
  create_if_absent,  ///< makes an empty one where there is nothing yet
};

}  // namespace kuv::vemora::embedded_server
