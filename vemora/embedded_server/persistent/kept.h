// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

namespace kuv::vemora::embedded_server {

/// What is stored of a pass, or of an operation that wrote; known at any moment, whatever failed.
enum class Kept {
  nothing,
  not_known,             ///< nobody can know whether its records are committed
  records,               ///< they are, and nothing of what came after
  records_perhaps_more,  ///< nobody can know whether what came after is, the documents
  everything,
};

}  // namespace kuv::vemora::embedded_server
