// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

namespace kuv::vemora::tools {

/// The exit status of the process. Scripts rely on the numbers.
enum Exit_Status : int {
  exit_done = 0,
  exit_trigger_errors = 1,  ///< done, but single triggers had errors
  exit_rejected = 2,        ///< a document was rejected and nothing changed
  exit_failed = 3,          ///< the pass or the database failed
  exit_refused = 4,         ///< refused, nothing changed: it would delete too much, for one
  exit_to_change = 5,       ///< where that is asked for: a plan has something to change, or
                            ///< documents differ
  exit_usage = 64,
};

}  // namespace kuv::vemora::tools
