// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>
#include <string_view>

#include "vemora/embedded_server/persistent/engine/unfit_for_step.h"

namespace kuv::vemora::embedded_server {

/// A rule (a CHECK constraint) of a schema step that some row of the site breaks, so that the step
/// cannot be made. Says of which table, which rows those are and what to do.
class Broken_Rule : public Unfit_For_Step {
 public:
  /// `step` is the text that adds the rule: to a table, or to one "new_..." that takes its place.
  Broken_Rule(std::string_view step, std::string_view rule);
};

}  // namespace kuv::vemora::embedded_server
